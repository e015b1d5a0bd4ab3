// SPDX-License-Identifier: MIT
// The programs in GLSL 3.30. Positions are relative to the camera, so that 32-bit floats are
// precise wherever in the world it is.
#pragma once

namespace quillon::graphics_gl {

// What all fragments of the scene share. Colours are mixed as they are shown, in sRGB.
inline constexpr const char* FRAME_BLOCK = R"(#version 330 core
layout(std140) uniform Frame {
    mat4 view_projection;
    mat4 sky_rays; // columns: right and up at the edges of the picture, forward
    vec4 zenith;
    vec4 horizon;
    vec4 nadir;
    vec4 fog; // start, 1 / (end - start), or 0 for no fog
};
)";

// The gradient is steepest near the horizon, as in a clear sky. The noise is Jimenez's interleaved
// gradient noise (2014): half a step of a byte, so that dark gradients show no bands.
inline constexpr const char* SKY_FUNCTIONS = R"(
vec3 sky(vec3 direction) {
    float height = normalize(direction).y;
    float rest = 1.0 - abs(height);
    return mix(height < 0.0 ? nadir.rgb : zenith.rgb, horizon.rgb, rest * rest * rest * rest);
}
vec3 dithered(vec3 color) {
    float noise = fract(52.9829189 * fract(dot(gl_FragCoord.xy, vec2(0.06711056, 0.00583715))));
    return color + (noise - 0.5) / 255.0;
}
float fog_at(vec3 place) {
    return smoothstep(0.0, 1.0, (length(place) - fog.x) * fog.y);
}
vec3 fogged(vec3 color, vec3 place) {
    float part = fog_at(place);
    return part > 0.0 ? dithered(mix(color, sky(place), part)) : color;
}
)";

inline constexpr const char* SKY_VERTEX = R"(
out vec3 ray;
void main() {
    vec2 corner = vec2((gl_VertexID << 1) & 2, gl_VertexID & 2) * 2.0 - 1.0;
    ray = mat3(sky_rays) * vec3(corner, 1.0);
    gl_Position = vec4(corner, 1.0, 1.0);
}
)";

inline constexpr const char* SKY_FRAGMENT = R"(
in vec3 ray;
out vec4 shown;
void main() {
    shown = vec4(dithered(sky(ray)), 1.0);
}
)";

inline constexpr const char* MESH_VERTEX = R"(
layout(location = 0) in vec3 position;
layout(location = 1) in vec3 normal;
layout(location = 2) in vec4 tangent;
layout(location = 3) in vec2 texcoord;
layout(location = 4) in vec4 color;
uniform mat4 model;
uniform mat3 normal_model;
out vec3 place;
out vec3 surface_normal;
out vec4 surface_tangent;
out vec2 surface_texcoord;
out vec4 surface_color;
void main() {
    vec4 moved = model * vec4(position, 1.0);
    place = moved.xyz;
    surface_normal = normal_model * normal;
    surface_tangent = vec4(mat3(model) * tangent.xyz, tangent.w);
    surface_texcoord = texcoord;
    surface_color = color;
    gl_Position = view_projection * moved;
}
)";

// What the driver computes, it computes for every pixel, so each program holds only what its
// drawings need: IS_LIT, HAS_PICTURE, HAS_NORMAL_MAP, HAS_SHINE, HAS_CONES and HAS_FOG are defined
// or not. Blinn's halfway vector (1977) for the highlights. The conversions between sRGB and linear
// light are sums of powers and of roots, within a hundredth of the curve.
inline constexpr const char* MESH_FRAGMENT = R"(
struct Light {
    vec4 place; // or the direction to a light that is far away
    vec4 axis_and_cutoff; // of its cone, the cosine
    vec4 diffuse_and_exponent;
    vec4 specular;
    vec4 ambient;
    vec4 attenuation;
};
layout(std140) uniform Lights {
    Light lights[MAX_LIGHTS]; // those that are far away first
    ivec4 light_counts; // of those, and of all
};
// The material: in linear light where it is lit, otherwise as shown.
uniform vec4 ambient;
uniform vec4 diffuse;
uniform vec4 specular_and_shininess;
uniform vec4 emission;
uniform sampler2D picture;
uniform sampler2D normal_picture;
in vec3 place;
in vec3 surface_normal;
in vec4 surface_tangent;
in vec2 surface_texcoord;
in vec4 surface_color;
out vec4 shown;

#ifdef IS_LIT
vec3 to_linear(vec3 color) {
    return color * (color * (color * 0.305306011 + 0.682171111) + 0.012522878);
}
vec3 to_shown(vec3 light) {
    vec3 root2 = sqrt(max(light, 0.0));
    vec3 root4 = sqrt(root2);
    vec3 root8 = sqrt(root4);
    return max(0.662002687 * root2 + 0.684122060 * root4 - 0.323583601 * root8 -
               0.0225411470 * light, 0.0);
}
vec3 bumped_normal() {
    vec3 normal = normalize(surface_normal);
#ifdef HAS_NORMAL_MAP
    vec3 along = surface_tangent.xyz - normal * dot(normal, surface_tangent.xyz);
    along *= inversesqrt(max(dot(along, along), 1e-12));
    vec3 across = cross(normal, along) * surface_tangent.w;
    vec3 bump = texture(normal_picture, surface_texcoord).xyz * (255.0 / 128.0) - 1.0;
    normal = normalize(along * bump.x + across * bump.y + normal * bump.z);
#endif
    return normal;
}
// `painted` is what the surface reflects of all light but highlights.
vec3 reflected(Light light, vec3 painted, vec3 normal, vec3 to_light, vec3 to_camera) {
    float facing = max(dot(normal, to_light), 0.0);
    vec3 sum = painted * (light.ambient.rgb * ambient.rgb +
                          light.diffuse_and_exponent.rgb * diffuse.rgb * facing);
#ifdef HAS_SHINE
    float shine = max(dot(normal, normalize(to_light + to_camera)), 1e-6);
    sum += light.specular.rgb * specular_and_shininess.rgb *
           (facing > 0.0 ? pow(shine, specular_and_shininess.w) : 0.0);
#endif
    return sum;
}
float strength(Light light, vec3 to_light, float distance) {
    vec3 falls = light.attenuation.xyz;
    float reached = 1.0 / max(falls.x + distance * (falls.y + distance * falls.z), 1e-6);
    reached = max(reached - LIGHT_END, 0.0);
#ifdef HAS_CONES
    float axis = dot(-to_light, light.axis_and_cutoff.xyz);
    if (light.axis_and_cutoff.w >= -1.0)
        reached *= axis < light.axis_and_cutoff.w
            ? 0.0 : pow(max(axis, 1e-6), light.diffuse_and_exponent.w);
#endif
    return reached;
}
vec3 lit(vec3 painted) {
    vec3 normal = bumped_normal();
    vec3 to_camera = normalize(-place);
    vec3 sum = emission.rgb;
    for (int i = 0; i < light_counts.x; ++i)
        sum += reflected(lights[i], painted, normal, lights[i].place.xyz, to_camera);
    for (int i = light_counts.x; i < light_counts.y; ++i) {
        vec3 way = lights[i].place.xyz - place;
        float distance = sqrt(max(dot(way, way), 1e-12));
        vec3 to_light = way / distance;
        sum += reflected(lights[i], painted, normal, to_light, to_camera) *
               strength(lights[i], to_light, distance);
    }
    return sum;
}
#endif
void main() {
    vec4 painted = surface_color;
#ifdef HAS_PICTURE
    painted *= texture(picture, surface_texcoord);
#endif
#ifdef IS_LIT
    vec3 color = to_shown(lit(to_linear(painted.rgb)));
#else
    vec3 color = painted.rgb * diffuse.rgb + emission.rgb;
#endif
#ifdef HAS_FOG
    color = fogged(color, place);
#endif
    shown = vec4(color, painted.a * diffuse.a);
}
)";

// Lines and sprites. What only adds its light fades in fog; all else takes on the fog's colour.
inline constexpr const char* PLAIN_VERTEX = R"(
layout(location = 0) in vec3 position;
layout(location = 1) in vec2 texcoord;
layout(location = 2) in vec4 color;
out vec3 place;
out vec2 plain_texcoord;
out vec4 plain_color;
void main() {
    place = position;
    plain_texcoord = texcoord;
    plain_color = color;
    gl_Position = view_projection * vec4(position, 1.0);
}
)";

inline constexpr const char* PLAIN_FRAGMENT = R"(
uniform sampler2D picture;
uniform bool has_fog;
uniform bool adds_light;
in vec3 place;
in vec2 plain_texcoord;
in vec4 plain_color;
out vec4 shown;
void main() {
    vec4 color = texture(picture, plain_texcoord) * plain_color;
    if (has_fog && adds_light)
        color.a *= 1.0 - fog_at(place);
    else if (has_fog)
        color.rgb = fogged(color.rgb, place);
    shown = color;
}
)";

inline constexpr const char* OVERLAY_VERTEX = R"(#version 330 core
layout(location = 0) in vec2 position;
layout(location = 1) in vec2 texcoord;
layout(location = 2) in vec4 color;
uniform vec2 surface; // its size in pixels
out vec2 overlay_texcoord;
out vec4 overlay_color;
void main() {
    overlay_texcoord = texcoord;
    overlay_color = color;
    gl_Position = vec4(position / surface * vec2(2.0, -2.0) + vec2(-1.0, 1.0), 0.0, 1.0);
}
)";

inline constexpr const char* OVERLAY_FRAGMENT = R"(#version 330 core
uniform sampler2D picture;
in vec2 overlay_texcoord;
in vec4 overlay_color;
out vec4 shown;
void main() {
    shown = texture(picture, overlay_texcoord) * overlay_color;
}
)";

} // namespace quillon::graphics_gl
