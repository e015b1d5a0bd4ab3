// SPDX-License-Identifier: MIT
#include "quillon/comfort.h"
#include "quillon/math/trigonometry.h"

#include <gmock/gmock.h>

#include <vector>

namespace {

using namespace quillon;

struct Ping : cMessage {
    int number = 0;
};

class Collector final : public cMessageObserver {
public:
    explicit Collector(std::uint32_t type) { router().register_for_message(this, type); }

    Collector(const Collector&) = delete;
    Collector& operator=(const Collector&) = delete;

    ~Collector() { router().unregister_all(this); }

    void receive_message(cMessage* message) override {
        numbers.push_back(static_cast<Ping*>(message)->number);
    }

    std::vector<int> numbers;
};

TEST(Comfort, VectorsNegateScaleFromTheLeftAndCompare) {
    constexpr cVector3D v(2.0, -3.0, 5.0);
    static_assert(-v == cVector3D(-2.0, 3.0, -5.0));
    static_assert(2.0 * v == cVector3D(4.0, -6.0, 10.0));
    static_assert(!(v == cVector3D(2.0, -3.0, 5.5)) && !(v == cVector3D(2.0, -3.5, 5.0)) &&
                  !(v == cVector3D(2.5, -3.0, 5.0)));
    EXPECT_FALSE(cVector2D<long>(7, 8) == cVector2D<long>(7, 9));
}

TEST(Comfort, RotationsTurnColumnsAsTheExportsDo) {
    __init_trig_tables();
    const cQuaternion q = rotation_about(cVector3D(1.0, 2.0, 3.0).normalized(), 0.7);
    const cVector3D v(0.3, -0.4, 0.9);
    cVector3D turned = v;
    __cVector3d_rotate_by_matrix(turned, matrix_of(q));
    EXPECT_TRUE(turned == matrix_of(q) * v);
    EXPECT_TRUE(turned == q * v);
    EXPECT_FALSE(turned == v);
    EXPECT_NEAR(q.w, rotation_of(matrix_of(q)).w, 1e-6);
    EXPECT_NEAR(q.z, slerp(QUATERNION_IDENTITY, q, 1.0).z, 1e-3);
    EXPECT_FALSE(q == QUATERNION_IDENTITY);
    cMatrix3D almost = MATRIX3D_IDENTITY;
    EXPECT_TRUE(almost == MATRIX3D_IDENTITY);
    almost[8] = 1.5;
    EXPECT_FALSE(almost == MATRIX3D_IDENTITY);
}

TEST(Comfort, ZonesContainTheirBordersAndNoMore) {
    cZone3D zone = zone_between({1.0, 2.0, 3.0}, {2.0, 4.0, 6.0});
    EXPECT_TRUE(center_of(zone) == cVector3D(1.5, 3.0, 4.5));
    EXPECT_TRUE(size_of(zone) == cVector3D(1.0, 2.0, 3.0));
    for (int axis = 0; axis < 3; ++axis)
        for (const double beyond : {-0.001, 0.001}) {
            cVector3D corner = beyond < 0.0 ? zone.minimum : zone.maximum;
            EXPECT_TRUE(contains(zone, corner));
            corner[axis] += beyond;
            EXPECT_FALSE(contains(zone, corner)) << axis << " " << beyond;
        }
    expand(zone, {0.0, 5.0, 4.0});
    EXPECT_TRUE(zone.minimum == cVector3D(0.0, 2.0, 3.0));
}

TEST(Comfort, SplinesAnswerByValue) {
    cSpline3D path;
    append(path, {1.0, 2.0, 3.0});
    append(path, {3.0, 2.0, 7.0});
    EXPECT_TRUE(hard_value(path, 0.5) == cVector3D(2.0, 2.0, 5.0));
    EXPECT_TRUE(smooth_value(path, 1.0) == cVector3D(3.0, 2.0, 7.0));
}

TEST(Comfort, MessagesArriveAtOnceOrAfterTheirDelay) {
    Collector collector(41);
    EXPECT_EQ(1, post(Ping{{41}, 5}));
    post_after(0.5F, Ping{{41}, 6});
    EXPECT_THAT(collector.numbers, testing::ElementsAre(5));
    router().update(0.75F);
    EXPECT_THAT(collector.numbers, testing::ElementsAre(5, 6));
}

TEST(Comfort, AWalkOverAListReachesWhatIsAppendedMeanwhile) {
    DSParray<int> list;
    list.add(new int(3), DSP_APPEND);
    list.add(new int(4), DSP_APPEND);
    std::vector<int> seen;
    for (const int* element : list) {
        seen.push_back(*element);
        if (*element == 4)
            list.add(new int(9), DSP_APPEND);
    }
    EXPECT_THAT(seen, testing::ElementsAre(3, 4, 9));
}

TEST(Comfort, OwnersFreeWhatTheyMake) {
    const RenderCache cache = make_render_cache(2, 3, {.normals = true, .colors = true});
    EXPECT_NE(nullptr, cache->normals);
    EXPECT_NE(nullptr, cache->colors);
    EXPECT_EQ(nullptr, cache->tangents);
    EXPECT_EQ(nullptr, cache->texcoords);
    EXPECT_EQ(255, make_bitmap(5, 3)[5 * 3 * 4 - 1]);
}

TEST(Comfort, InputNamesAreCodesAtCompileTime) {
    static_assert(input_code("SPACE") == digital_code("Space"));
    static_assert(input_code("pad 2 hat 1 left") == digital_code("Pad 2 Hat 1 Left"));
    static_assert(axis_code("mouse Y") == analog_code("Mouse Y"));
}

} // namespace
