// Transfer characteristics, numbered as in ITU-T H.273
const int AVCOL_TRC_BT709 = 1;
const int AVCOL_TRC_SMPTE2084 = 16;
const int AVCOL_TRC_ARIB_STD_B67 = 18;

// SMPTE ST 2084 (PQ) EOTF, 1.0 is 10000 cd/m2
vec3 smpte2084(vec3 E)
{
    const float m1 = 1305.0 / 8192.0;
    const float m2 = 2523.0 / 32.0;
    const float c2 = 2413.0 / 128.0;
    const float c3 = 2392.0 / 128.0;
    const float c1 = c3 - c2 + 1.0;

    vec3 E1m2 = pow(E, vec3(1.0 / m2));
    return pow(max(E1m2 - c1, 0.0) / (c2 - c3 * max(E1m2, 1e-6)), vec3(1.0 / m1));
}

// ARIB STD-B67 (HLG) inverse OETF, 1.0 is the peak
const float ARIB_B67_A = 0.17883277;
const float ARIB_B67_B = 0.28466892;
const float ARIB_B67_C = 0.55991073;

float arib_b67(float val)
{
    if (val <= 0.5)
        return val * val * (1.0 / 3.0);
    return (exp((val - ARIB_B67_C) / ARIB_B67_A) + ARIB_B67_B) / 12.0;
}

vec3 arib_b67(vec3 val)
{
    return vec3(arib_b67(val.r), arib_b67(val.g), arib_b67(val.b));
}

// A filmic tone curve, before white is scaled to 1.0
float uncharted2_tonemap_partial(float x)
{
    const float A = 0.15;
    const float B = 0.50;
    const float C = 0.10;
    const float D = 0.20;
    const float E = 0.02;
    const float F = 0.30;
    return ((x * (A * x + C * B) + D * E) / (x * (A * x + B) + D * F)) - E / F;
}

float uncharted2_filmic(float v)
{
    // What the exposure brings to 7.5 becomes white.
    const float exposureBias = 10.0;
    return uncharted2_tonemap_partial(v * exposureBias) * (1.0 / uncharted2_tonemap_partial(7.5));
}

// Maps the outer components, and keeps the middle one at its place between them,
// so that the hue does not shift
void rgbToneHelper(inout float maxVal, inout float medVal, inout float minVal)
{
    float oldMax = maxVal;
    float oldMed = medVal;
    float oldMin = minVal;

    maxVal = uncharted2_filmic(oldMax);
    minVal = uncharted2_filmic(oldMin);
    medVal = minVal + (maxVal - minVal) * (oldMed - oldMin) / (oldMax - oldMin);
}

void adobeFilmLikeUncharted2Filmic(inout vec3 rgb)
{
    // The helper wants the components as maximum, medium and minimum.
    if (rgb.r >= rgb.g)
    {
        if (rgb.g > rgb.b)
            rgbToneHelper(rgb.r, rgb.g, rgb.b);
        else if (rgb.b > rgb.r)
            rgbToneHelper(rgb.b, rgb.r, rgb.g);
        else if (rgb.b > rgb.g)
            rgbToneHelper(rgb.r, rgb.b, rgb.g);
        else // Green equals blue, so there is no middle component.
        {
            rgb.r = uncharted2_filmic(rgb.r);
            rgb.g = uncharted2_filmic(rgb.g);
            rgb.b = rgb.g;
        }
    }
    else
    {
        if (rgb.r >= rgb.b)
            rgbToneHelper(rgb.g, rgb.r, rgb.b);
        else if (rgb.b > rgb.g)
            rgbToneHelper(rgb.b, rgb.g, rgb.r);
        else
            rgbToneHelper(rgb.g, rgb.b, rgb.r);
    }
}

// The functions below linearize, convert the primaries and encode for the display.

void colorspace_trc_bt709(inout vec3 value, mat3 colorPrimariesMatrix)
{
    value = pow(value, vec3(2.4));
    value = clamp(colorPrimariesMatrix * value, 0.0, 1.0);
    value = pow(value, vec3(1.0 / 2.4));
}

void colorspace_trc_smpte2084(inout vec3 value, mat3 colorPrimariesMatrix, float maxLuminance)
{
    value = smpte2084(value);
    // 1.0 becomes maxLuminance, and all that is brighter is cut off.
    value *= 10000.0 / maxLuminance;
    value = clamp(value, 0.0, 1.0);
    adobeFilmLikeUncharted2Filmic(value);
    value = colorPrimariesMatrix * value;
    value = clamp(value, 0.0, 1.0);
    value = pow(value, vec3(1.0 / 2.4));
}

// HLG is relative to the display, so maxLuminance is of no use here.
void colorspace_trc_hlg(inout vec3 value, mat3 colorPrimariesMatrix, float maxLuminance)
{
    value = arib_b67(value);
    value = clamp(value, 0.0, 1.0);
    adobeFilmLikeUncharted2Filmic(value);
    value = colorPrimariesMatrix * value;
    value = clamp(value, 0.0, 1.0);
    value = pow(value, vec3(1.0 / 1.8));
}
