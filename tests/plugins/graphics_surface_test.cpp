// SPDX-License-Identifier: MIT
// How surfaces, lights, pictures and fog show, pixel by pixel.
#include "graphics_plugin.h"

#include <gmock/gmock.h>

#include <cmath>

using testing::Each;
using testing::Gt;
using testing::Lt;

namespace {

constexpr Atmosphere GREY_SKY = {.zenith = {0.2F, 0.2F, 0.2F, 1.0F},
                                 .horizon = {0.2F, 0.2F, 0.2F, 1.0F},
                                 .nadir = {0.2F, 0.2F, 0.2F, 1.0F}};

const cMaterial MATTE({0.2F, 0.1F, 0.0F, 1.0F}, {0.5F, 0.5F, 0.25F, 0.6F}, BLACK,
                      {0.1F, 0.0F, 0.0F, 1.0F}, 0.0F);
// Specular alone: it shows where a highlight is, and nothing else.
const cMaterial SHINY(BLACK, BLACK, WHITE, BLACK, 20.0F);

// A byte as it is shown of an amount of light.
int shown(double light) {
    return static_cast<int>(255 * (1.055 * std::pow(light, 1 / 2.4) - 0.055));
}

double light_of(double component) {
    return std::pow((component + 0.055) / 1.055, 2.4);
}

cLight light_from(std::uint8_t flag, const cVector3D& place) {
    cLight light;
    light.light_flag = flag;
    light.position = PLACE + place;
    light.set_direction(place * -1.0);
    return light;
}

cLight falling_off(cLight light, float cutoff) {
    light.set_spot_and_attenuation(cutoff, 0.0F, 1.0F, 0.5F, 0.25F, LIGHT_POINT);
    return light;
}

cLight near_its_end() {
    cLight light = light_from(LIGHT_POINT, {0, 0, -2});
    light.set_spot_and_attenuation(180.0F, 0.0F, 200.0F, 0.0F, 0.0F, LIGHT_POINT);
    light.intensity = 100.0F;
    return light;
}

cLight ambient_only() {
    cLight light = light_from(LIGHT_DIRECTIONAL, {0, 0, 1});
    light.set_colors(WHITE, BLACK, BLACK, 0.5F);
    return light;
}

void expect_near(const Rgb& expected, const Rgb& actual, int tolerance) {
    for (std::size_t channel = 0; channel < 3; ++channel)
        EXPECT_NEAR(expected[channel], actual[channel], tolerance) << "channel " << channel;
}

class GraphicsSurface : public GraphicsTest {
protected:
    void SetUp() override {
        GraphicsTest::SetUp();
        graphics().set_atmosphere(GREY_SKY);
        drawing.mesh = graphics().upload_mesh(square().get());
        drawing.position = PLACE;
        drawing.material = &MATTE;
    }

    void TearDown() override {
        graphics().set_atmosphere({});
        GraphicsTest::TearDown();
    }

    Rgb middle() const {
        return frame_of(camera_before_place(),
                        [this] {
                            EXPECT_TRUE(graphics().draw_mesh(drawing)) << graphics().last_error();
                        })
            .at(WIDTH / 2, HEIGHT / 2);
    }

    MeshDrawing drawing;
};

} // namespace

TEST_F(GraphicsSurface, EachKindOfLightFollowsItsFormula) {
    const double red = light_of(0.5);
    const double blue = light_of(0.25);
    const double glow = light_of(0.1);
    // At distance 2: 1 / (1 + 0.5 * 2 + 0.25 * 4), less what makes lights end.
    const double reached = 1.0 / 3 - 1.0 / 256;
    const double ended = 100 * (1.0 / 200 - 1.0 / 256);
    const Rgb faced = {shown(red + glow), shown(red), shown(blue)};
    const Rgb unlit = {shown(glow), 0, 0};
    const Rgb near = {shown(red * reached + glow), shown(red * reached), shown(blue * reached)};

    const struct {
        const char* name;
        cLight light;
        Rgb expected;
    } cases[] = {
        {"FarAndFaced", light_from(LIGHT_DIRECTIONAL, {0, 0, -2}), faced},
        {"FarAndBehind", light_from(LIGHT_DIRECTIONAL, {0, 0, 2}), unlit},
        {"FarAndAslant",
         light_from(LIGHT_DIRECTIONAL, {3, 0, -4}),
         {shown(red * 0.8 + glow), shown(red * 0.8), shown(blue * 0.8)}},
        {"Point", falling_off(light_from(LIGHT_POINT, {0, 0, -2}), 180.0F), near},
        {"InsideItsCone", falling_off(light_from(LIGHT_POINT, {0, 0, -2}), 20.0F), near},
        {"NearItsEnd",
         near_its_end(),
         {shown(red * ended + glow), shown(red * ended), shown(blue * ended)}},
        {"Ambient", ambient_only(), {shown(light_of(0.2) / 2 + glow), shown(light_of(0.1) / 2), 0}},
        {"Off", light_from(LIGHT_OFF, {0, 0, -2}), unlit},
    };

    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        graphics().set_lights(&row.light, 1);
        expect_near(row.expected, middle(), 3);
    }
}

TEST_F(GraphicsSurface, ALightIsNotSeenOutsideItsConeNorBeyondItsEnd) {
    cLight beside = falling_off(light_from(LIGHT_POINT, {0, 0, -2}), 20.0F);
    beside.set_direction({0, 1, 1});
    cLight far = falling_off(light_from(LIGHT_POINT, {0, 0, -40}), 180.0F);
    for (const cLight& light : {beside, far}) {
        graphics().set_lights(&light, 1);
        expect_near({shown(light_of(0.1)), 0, 0}, middle(), 1);
    }
}

TEST_F(GraphicsSurface, AHighlightIsWhereTheLightIsMirrored) {
    drawing.material = &SHINY;
    const cLight mirrored = light_from(LIGHT_POINT, {0, 0, -3});
    const cLight aside = light_from(LIGHT_POINT, {9, 0, -3});
    graphics().set_lights(&mirrored, 1);
    EXPECT_THAT(middle(), Each(Gt(250)));
    graphics().set_lights(&aside, 1);
    EXPECT_THAT(middle(), Each(Lt(40)));
}

TEST_F(GraphicsSurface, UnlitColoursBlendAsTheyAre) {
    drawing.is_lit = false;
    const Rgb over = {153, 128, 64};

    const struct {
        const char* name;
        Blend blend;
        Rgb expected;
    } cases[] = {{"Opaque", Blend::Opaque, over},
                 {"Alpha", Blend::Alpha, {112, 97, 59}},
                 {"Add", Blend::Add, {143, 128, 89}}};

    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        drawing.blend = row.blend;
        expect_near(row.expected, middle(), 1);
    }
}

TEST_F(GraphicsSurface, ATextureIsUprightAndANormalMapTiltsTowardItsAxes) {
    drawing.material = nullptr;
    drawing.is_lit = false;
    drawing.texture = upload({255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 9, 9, 9, 255}, 2, 2);
    const Frame frame = frame_of(camera_before_place(), [this] { graphics().draw_mesh(drawing); });
    EXPECT_EQ((Rgb{255, 0, 0}), frame.at(WIDTH / 2 - 9, HEIGHT / 2 - 9));
    EXPECT_EQ((Rgb{0, 255, 0}), frame.at(WIDTH / 2 + 9, HEIGHT / 2 - 9));
    EXPECT_EQ((Rgb{0, 0, 255}), frame.at(WIDTH / 2 - 9, HEIGHT / 2 + 9));

    // Tilted along the first axis of the texture, then along the second, which points down on the
    // square and up on the mirrored one.
    const MeshHandle mirrored = graphics().upload_mesh(square(true).get());

    const struct {
        const char* name;
        MeshHandle mesh;
        std::vector<std::uint8_t> bump;
        cVector3D toward;
    } cases[] = {{"First", drawing.mesh, {218, 128, 218, 255}, {1, 0, 0}},
                 {"Second", drawing.mesh, {128, 218, 218, 255}, {0, -1, 0}},
                 {"SecondMirrored", mirrored, {128, 218, 218, 255}, {0, 1, 0}}};

    drawing.is_lit = true;
    drawing.texture = 0;
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        drawing.mesh = row.mesh;
        drawing.normal_map = upload(row.bump, 1, 1);
        const cLight before = light_from(LIGHT_DIRECTIONAL, row.toward + cVector3D(0, 0, -1));
        const cLight after = light_from(LIGHT_DIRECTIONAL, row.toward * -1 + cVector3D(0, 0, -1));
        graphics().set_lights(&before, 1);
        EXPECT_THAT(middle(), Each(Gt(240)));
        graphics().set_lights(&after, 1);
        EXPECT_THAT(middle(), Each(Lt(20)));
    }
}

TEST_F(GraphicsSurface, FogTurnsWhatIsFarIntoSky) {
    Atmosphere fog = GREY_SKY;
    fog.fog_start = 1.0;
    drawing.is_lit = false;

    const struct {
        const char* name;
        double end;
        Rgb expected;
    } cases[] = {{"Behind", 2.5, {51, 51, 51}},
                 {"Halfway", 5.0, {102, 89, 57}},
                 {"None", 1.0, {153, 128, 64}}};

    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        fog.fog_end = row.end;
        graphics().set_atmosphere(fog);
        expect_near(row.expected, middle(), 2);
    }
}

TEST_F(GraphicsSurface, TheCameraSeesRightUpAndForwardAsItIsTurned) {
    const SpriteDrawing right = {.position = PLACE + cVector3D(1.0, 0.5, 0.0),
                                 .width = 0.4,
                                 .height = 0.2,
                                 .color = RED,
                                 .blend = Blend::Opaque};
    // One unit is 27 pixels in the middle plane.
    const Frame straight = frame_of(camera_before_place(), [&] { graphics().draw_sprite(right); });
    EXPECT_EQ((Rgb{255, 0, 0}), straight.at(WIDTH / 2 + 27, HEIGHT / 2 - 14));
    EXPECT_EQ((Rgb{51, 51, 51}), straight.at(WIDTH / 2 + 27, HEIGHT / 2 - 19));
    EXPECT_EQ((Rgb{51, 51, 51}), straight.at(WIDTH / 2 - 27, HEIGHT / 2 + 14));

    // Seen from the other side, with the head to the right: what was right and up is up and left.
    Camera turned;
    turned.position = PLACE + cVector3D(0.0, 0.0, 3.0);
    __cMatrix3d_from_forward_and_up(turned.orientation, {0, 0, -1}, {1, 0, 0});
    const Frame other = frame_of(turned, [&] { graphics().draw_sprite(right); });
    EXPECT_EQ((Rgb{255, 0, 0}), other.at(WIDTH / 2 + 14, HEIGHT / 2 - 27));
}

TEST_F(GraphicsSurface, NearThingsHideFarOnes) {
    MeshDrawing far = drawing;
    far.position = PLACE + cVector3D(0, 0, 1);
    far.material = __nsMaterial_material_table("WHITE");
    far.is_lit = drawing.is_lit = false;
    const Frame frame = frame_of(camera_before_place(), [&] {
        graphics().draw_mesh(drawing);
        graphics().draw_mesh(far);
    });
    expect_near({153, 128, 64}, frame.at(WIDTH / 2, HEIGHT / 2 + 9), 1);
}
