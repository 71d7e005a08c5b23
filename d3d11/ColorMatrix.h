#pragma once

#include <QMatrix4x4>

// Picture adjustments and the matrix that applies them to column vectors (R, G, B, 1). No thread or context
// of its own; the owner's lock guards it.
class ColorMatrix
{
public:
    // In half turns about the grey axis: 1.0 turns by pi.
    void setHue(double dHue);
    // 0 keeps, -1 removes all colour.
    void setSaturation(double dSaturation);
    // 0 keeps; scales about mid-grey.
    void setContrast(double dContrast);
    // Added to each channel.
    void setBrightness(double dBrightness);
    double hue() const { return m_dHue; }
    double saturation() const { return m_dSaturation; }
    double contrast() const { return m_dContrast; }
    double brightness() const { return m_dBrightness; }

    // Whether matrix() is up to date. Each setter and invalidate() clear it.
    bool isValid() const { return m_blValid; }
    void invalidate() { m_blValid = false; }

    void updateColorMatrix();
    const QMatrix4x4 &matrix() const { return m_matrix; }

private:
    bool m_blValid = false;
    double m_dHue = 0.0;
    double m_dSaturation = 0.0;
    double m_dContrast = 0.0;
    double m_dBrightness = 0.0;
    QMatrix4x4 m_matrix;
};
