// The four programs in GLSL 3.30. Positions are relative to the camera, so that 32-bit floats are
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
    vec4 fog; // start, 1 / (end - start)
};
)";

// The gradient is steepest near the horizon, as in a clear sky. The noise is Jimenez's interleaved
// gradient noise (2014): half a step of a byte, so that dark gradients show no bands.
inline constexpr const char* SKY_FUNCTIONS = R"(
vec3 sky(vec3 direction) {
    float height = normalize(direction).y;
    vec3 far = height < 0.0 ? nadir.rgb : zenith.rgb;
    return mix(horizon.rgb, far, sqrt(abs(height)));
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

// Blinn's halfway vector (1977) for the highlights. The conversions between sRGB and linear light
// stay within a hundredth of its curve and need one power function instead of four.
inline constexpr const char* MESH_FRAGMENT = R"(
struct Light {
    vec4 place_and_kind;
    vec4 direction_and_cutoff; // the cosine
    vec4 diffuse_and_exponent;
    vec4 specular;
    vec4 ambient;
    vec4 attenuation;
};
layout(std140) uniform Lights {
    Light lights[MAX_LIGHTS];
    ivec4 light_count;
};
uniform bool is_lit;
// The material: in linear light where it is lit, otherwise as shown.
uniform vec4 ambient;
uniform vec4 diffuse;
uniform vec4 specular_and_shininess;
uniform vec4 emission;
uniform bool has_normal_map;
uniform sampler2D picture;
uniform sampler2D normal_picture;
in vec3 place;
in vec3 surface_normal;
in vec4 surface_tangent;
in vec2 surface_texcoord;
in vec4 surface_color;
out vec4 shown;

vec3 to_linear(vec3 color) {
    return color * (color * (color * 0.305306011 + 0.682171111) + 0.012522878);
}
vec3 to_shown(vec3 light) {
    return max(1.055 * pow(max(light, 0.0), vec3(0.416666667)) - 0.055, 0.0);
}
vec3 bumped_normal() {
    vec3 normal = normalize(surface_normal);
    if (!has_normal_map)
        return normal;
    vec3 along = surface_tangent.xyz - normal * dot(normal, surface_tangent.xyz);
    if (dot(along, along) < 1e-12)
        return normal;
    along = normalize(along);
    vec3 across = cross(normal, along) * surface_tangent.w;
    vec3 bump = texture(normal_picture, surface_texcoord).xyz * (255.0 / 128.0) - 1.0;
    return normalize(along * bump.x + across * bump.y + normal * bump.z);
}
float strength(Light light, vec3 to_light, float distance) {
    vec3 falls = light.attenuation.xyz;
    float reached = 1.0 / max(falls.x + distance * (falls.y + distance * falls.z), 1e-6);
    float axis = dot(-to_light, light.direction_and_cutoff.xyz);
    if (light.direction_and_cutoff.w < -1.0)
        return reached;
    return axis < light.direction_and_cutoff.w
        ? 0.0 : reached * pow(max(axis, 0.0), light.diffuse_and_exponent.w);
}
vec3 lit(vec3 painted) {
    vec3 normal = bumped_normal();
    vec3 to_camera = normalize(-place);
    vec3 sum = vec3(0.0);
    for (int i = 0; i < light_count.x; ++i) {
        Light light = lights[i];
        bool is_far = light.place_and_kind.w > 1.5;
        vec3 way = light.place_and_kind.xyz - place;
        float distance = is_far ? 0.0 : length(way);
        vec3 to_light = is_far ? -light.direction_and_cutoff.xyz : way / max(distance, 1e-6);
        float reached = is_far ? 1.0 : strength(light, to_light, distance);
        if (reached < 1e-3)
            continue;
        float facing = max(dot(normal, to_light), 0.0);
        sum += painted * reached * (light.ambient.rgb * ambient.rgb +
                                    light.diffuse_and_exponent.rgb * diffuse.rgb * facing);
        if (facing > 0.0 && specular_and_shininess.w > 0.0) {
            float shine = max(dot(normal, normalize(to_light + to_camera)), 0.0);
            sum += light.specular.rgb * specular_and_shininess.rgb *
                   pow(shine, specular_and_shininess.w) * reached;
        }
    }
    return sum;
}
void main() {
    vec4 painted = texture(picture, surface_texcoord) * surface_color;
    vec3 color = is_lit ? to_shown(lit(to_linear(painted.rgb)) + emission.rgb)
                        : painted.rgb * diffuse.rgb + emission.rgb;
    shown = vec4(fogged(color, place), painted.a * diffuse.a);
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
