#include "rycore/viewport/drawing/RySceneShaders.h"

namespace RySceneShaders {

const char *const BackgroundVertex = R"(#version 120
uniform vec2 size;
varying vec2 place;
void main()
{
    place = (gl_Vertex.xy * 0.5 + 0.5) * size;
    gl_Position = vec4(gl_Vertex.xy, 0.0, 1.0);
}
)";

// The noise hides the steps that eight bits leave in so soft a gradient.
const char *const BackgroundFragment = R"(#version 120
uniform vec2 size;
uniform vec3 top;
uniform vec3 bottom;
varying vec2 place;
void main()
{
    vec2 pixel = floor(place) + 0.5;
    float noise = fract(sin(dot(pixel, vec2(12.9898, 78.233))) * 43758.5453) - 0.5;
    gl_FragColor = vec4(mix(bottom, top, smoothstep(0.0, 1.0, pixel.y / size.y)) + noise / 255.0, 1.0);
}
)";

const char *const PictureVertex = R"(#version 120
varying vec2 place;
void main()
{
    place = gl_Vertex.xy * 0.5 + 0.5;
    gl_Position = vec4(gl_Vertex.xy, 0.0, 1.0);
}
)";

const char *const PictureFragment = R"(#version 120
uniform sampler2D picture;
varying vec2 place;
void main()
{
    gl_FragColor = texture2D(picture, place);
}
)";

const char *const GridVertex = R"(#version 120
varying vec2 place;
void main()
{
    place = gl_Vertex.xz;
    gl_Position = ftransform();
}
)";

// Lines every 10 cm and every metre, one pixel wide at any distance; a step fades out before it becomes noise.
const char *const GridFragment = R"(#version 120
uniform vec3 color;
uniform vec2 center;
uniform float radius;
varying vec2 place;
float lines(float step, vec2 width)
{
    vec2 cell = abs(fract(place / step - 0.5) - 0.5) * step / max(width, vec2(1e-6));
    float cover = 1.0 - clamp(min(cell.x, cell.y), 0.0, 1.0);
    return cover * (1.0 - smoothstep(0.12, 0.45, max(width.x, width.y) / step));
}
void main()
{
    vec2 width = fwidth(place);
    float fade = 1.0 - smoothstep(0.25, 1.0, length(place - center) / radius);
    float fine = lines(10.0, width) * 0.22;
    float metre = lines(100.0, width * 1.3) * 0.5;
    vec2 axis = clamp(1.0 - abs(place) / max(width * 1.4, vec2(1e-6)), 0.0, 1.0);
    vec3 tint = mix(color, vec3(0.80, 0.32, 0.30), axis.y);
    tint = mix(tint, vec3(0.32, 0.48, 0.82), axis.x);
    float alpha = max(max(fine, metre), max(axis.x, axis.y) * 0.6);
    gl_FragColor = vec4(tint, alpha * fade);
}
)";

const char *const SurfaceVertex = R"(#version 120
varying vec3 eye;
varying vec3 normal;
varying vec2 uv;
void main()
{
    eye = vec3(gl_ModelViewMatrix * gl_Vertex);
    // Normals of posed figures come in any length; zero stays zero.
    float size = length(gl_Normal);
    normal = gl_NormalMatrix * (size > 0.0 ? gl_Normal / size : gl_Normal);
    uv = gl_MultiTexCoord0.xy;
    gl_Position = ftransform();
}
)";

// Three wide soft lights that go with the camera and an ambient term between sky and ground; matte, with a faint rim.
const char *const SurfaceFragment = R"(#version 120
uniform vec4 base;
uniform sampler2D picture;
uniform int textured;
uniform vec3 up;
uniform float cover;
varying vec3 eye;
varying vec3 normal;
varying vec2 uv;
float wrapped(vec3 n, vec3 light, float wrap)
{
    float d = max((dot(n, light) + wrap) / (1.0 + wrap), 0.0);
    return d * d;
}
void main()
{
    vec3 view = normalize(-eye);
    vec3 n = length(normal) > 0.0 ? normalize(normal) : view;
    // Lit from the side that shows. Which one that is says the facet: the smooth normal alone would flip at the outline.
    vec3 flatNormal = cross(dFdx(eye), dFdy(eye));
    if (dot(flatNormal, view) < 0.0)
        flatNormal = -flatNormal;
    if (dot(n, flatNormal) < 0.0)
        n = -n;
    vec3 albedo = base.rgb;
    if (textured != 0)
        albedo *= pow(texture2D(picture, uv).rgb, vec3(2.2));
    vec3 light = mix(vec3(0.105, 0.098, 0.094), vec3(0.225, 0.235, 0.255), dot(n, up) * 0.5 + 0.5);
    light += vec3(0.80, 0.77, 0.73) * wrapped(n, normalize(vec3(-0.45, 0.65, 0.62)), 0.35);
    light += vec3(0.20, 0.22, 0.26) * wrapped(n, normalize(vec3(0.85, 0.10, 0.50)), 0.5);
    light += vec3(0.16, 0.17, 0.20) * wrapped(n, normalize(vec3(0.20, 0.45, -0.87)), 0.4);
    float facing = 1.0 - max(dot(n, view), 0.0);
    vec3 color = albedo * light + vec3(0.035) * pow(facing, 3.0);
    gl_FragColor = vec4(pow(color, vec3(1.0 / 2.2)), cover);
}
)";

} // namespace RySceneShaders
