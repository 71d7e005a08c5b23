// Hue, saturation and lightness, each in 0..1
vec3 rgb2hsl(vec3 c)
{
    const float eps = 1.19209e-07;

    float cmin = min(c.r, min(c.g, c.b));
    float cmax = max(c.r, max(c.g, c.b));
    float cd = cmax - cmin;

    // The first maximum
    vec3 a = 1.0 - step(eps, abs(cmax - c));
    a = mix(vec3(a.x, 0.0, a.z), a, step(0.5, 2.0 - a.x - a.y));
    a = mix(vec3(a.x, a.y, 0.0), a, step(0.5, 2.0 - a.x - a.z));
    a = mix(vec3(a.x, a.y, 0.0), a, step(0.5, 2.0 - a.y - a.z));

    float z = (cmax + cmin) / 2.0;
    float y = mix(cd / max(cmax + cmin, eps), cd / max(2.0 - (cmax + cmin), eps), step(0.5, z));
    float x = dot(vec3(0.0, 2.0, 4.0) + (c.gbr - c.brg) / max(cd, eps), a);
    x = (x + (1.0 - step(0.0, x)) * 6.0) / 6.0;

    return vec3(x, y, z);
}

vec3 hsl2rgb(vec3 c)
{
    vec3 rgb = clamp(abs(mod(c.x * 6.0 + vec3(0.0, 4.0, 2.0), 6.0) - 3.0) - 1.0, 0.0, 1.0);
    return c.z + c.y * (rgb - 0.5) * (1.0 - abs(2.0 * c.z - 1.0));
}
