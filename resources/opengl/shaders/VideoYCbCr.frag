#ifdef TEXTURE_RECTANGLE
    #define sampler sampler2DRect
    #define texture texture2DRect
    #define texCoordY (vTexCoord * uTextureSize)
    #define texCoordUV (vTexCoord * uTextureSize / 2.0)
    #define texCoordYWithOffset(offset) ((vTexCoord + offset) * uTextureSize)
#else
    #define sampler sampler2D
    #define texture texture2D
    #define texCoordY vTexCoord
    #define texCoordUV vTexCoord
    #define texCoordYWithOffset(offset) (vTexCoord + offset)
#endif

varying vec2 vTexCoord;

uniform mat3 uYUVtRGB;
uniform vec2 uRangeMultiplier;
uniform float uBL; // Black level
uniform vec4 uVideoEq; // Brightness, contrast, saturation, hue
uniform float uSharpness;
uniform vec2 uTextureSize; // In texels
uniform float uBitsMultiplier; // For samples in wider texels
uniform int uTrc;
uniform mat3 uColorPrimariesMatrix;
uniform float uMaxLuminance;
uniform int uNegative;
uniform sampler uY;
#ifdef NV12
uniform sampler uCbCr;
#else
uniform sampler uCb;
uniform sampler uCr;
#endif

#ifdef GL3
float getLumaAtOffset(float x, float y)
{
    return texture(uY, texCoordYWithOffset(vec2(x, y)))[0] - uBL;
}
#endif

uniform int u_iDrawFlag;
uniform float u_fDrawAlpha;
uniform vec3 u_vDrawColor;

void main()
{
    float brightness = uVideoEq[0];
    vec3 contrastSaturation = vec3(
        uVideoEq[1],
        uVideoEq[1] * uVideoEq[2],
        uVideoEq[1] * uVideoEq[2]
    );

    vec3 YCbCr = vec3(
        texture(uY, texCoordY)[0],
#ifdef NV12
        texture(uCbCr, texCoordUV)[0],
        texture(uCbCr, texCoordUV)[1]
#else
        texture(uCb, texCoordUV)[0],
        texture(uCr, texCoordUV)[0]
#endif
    );
    YCbCr *= uBitsMultiplier;
    YCbCr -= vec3(uBL, 128.0 / 255.0, 128.0 / 255.0);

#ifdef GL3
    if (uSharpness != 0.0)
    {
        vec2 d = 1.0 / uTextureSize;
        // 3x3 kernel: 1 2 1 / 2 4 2 / 1 2 1, divided by 16
        float blur = getLumaAtOffset(-d.x, -d.y) / 16.0;
        blur += getLumaAtOffset(0.0, -d.y) / 8.0;
        blur += getLumaAtOffset(d.x, -d.y) / 16.0;
        blur += getLumaAtOffset(-d.x, 0.0) / 8.0;
        blur += YCbCr[0] / 4.0;
        blur += getLumaAtOffset(d.x, 0.0) / 8.0;
        blur += getLumaAtOffset(-d.x, d.y) / 16.0;
        blur += getLumaAtOffset(0.0, d.y) / 8.0;
        blur += getLumaAtOffset(d.x, d.y) / 16.0;
        YCbCr[0] = clamp(YCbCr[0] + (YCbCr[0] - blur) * uSharpness, 0.0, 1.0);
    }

    float hueAdj = uVideoEq[3];
    if (hueAdj != 0.0)
    {
        // Chroma is a vector, and hue its angle.
        float hue = atan(YCbCr[2], YCbCr[1]) + hueAdj;
        float chroma = sqrt(YCbCr[1] * YCbCr[1] + YCbCr[2] * YCbCr[2]);
        YCbCr[1] = chroma * cos(hue);
        YCbCr[2] = chroma * sin(hue);
    }
#endif

    const vec3 middle = vec3(0.5, 0.0, 0.0);
    YCbCr *= uRangeMultiplier.xyy;
    vec3 rgb = clamp(uYUVtRGB * ((YCbCr - middle) * contrastSaturation + middle), 0.0, 1.0);

#ifdef GL3
    if (uTrc == AVCOL_TRC_BT709)
        colorspace_trc_bt709(rgb, uColorPrimariesMatrix);
    else if (uTrc == AVCOL_TRC_SMPTE2084)
        colorspace_trc_smpte2084(rgb, uColorPrimariesMatrix, uMaxLuminance);
    else if (uTrc == AVCOL_TRC_ARIB_STD_B67)
        colorspace_trc_hlg(rgb, uColorPrimariesMatrix, uMaxLuminance);

    if (uNegative != 0)
        rgb = 1.0 - rgb;
#endif

    gl_FragColor = vec4(rgb + brightness, 1.0);
    // A solid fill for drawing flat colour
    if (u_iDrawFlag == 1)
        gl_FragColor = vec4(u_vDrawColor, u_fDrawAlpha);
}
