#include "quillon/appearance/gradient.h"
#include "tests/appearance/expect_color.h"

TEST(Gradient, SamplesFollowTheFormulas) {
    const struct {
        const char* name;
        float t;
        float r, g, b, a;
    } cases[] = {
        {"Fade", 0, 1, 1, 1, 0},          {"Monochrome", 0.3F, 0.3F, 0.3F, 0.3F, 1},
        {"Health", 0, 1, 0, 0, 1},        {"Health", 0.5F, 1, 1, 0, 1},
        {"Health", 0.75F, 0.5F, 1, 0, 1}, {"Health", 1, 0, 1, 0, 1},
        {"Mana", 2, 0, 2, 1, 1},          {"Skin", 0, 0.2F, 0.1F, 0, 1},
        {"Skin", 1, 1, 0.85F, 0.65F, 1},  {"Flame", 0, 1, 0.15F, 0.2F, 1},
        {"Flame", 1, 1, 0.85F, 0.2F, 1},  {"Hue", 0, 1, 0, 0, 1},
    };

    for (const auto& row : cases) {
        SCOPED_TRACE(testing::Message() << row.name << " at " << row.t);
        const quillon::cGradient* gradient = __nsGradient_gradient_table(row.name);
        ASSERT_NE(nullptr, gradient);
        EXPECT_EQ(row.name, gradient->name);
        expect_color(gradient->function(row.t), row.r, row.g, row.b, row.a);
    }
}

TEST(GradientTable, FindsNamesInAnyCase) {
    for (const char* name : {"HEALTH", "hEaLtH", "health"})
        EXPECT_EQ(__nsGradient_gradient_table("Health"), __nsGradient_gradient_table(name)) << name;
}

TEST(GradientTable, OtherNamesFindNothing) {
    for (const char* name : {"", " Hue", "Hue ", "0", "Heal", "Hue\xC4"})
        EXPECT_EQ(nullptr, __nsGradient_gradient_table(name)) << name;
}
