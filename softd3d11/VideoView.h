#pragma once

#include "softd3d11/Texture2D.h"

#include <utility>

namespace softd3d11 {

// A slice of a texture as the input or output of a video processor. Holds the texture.
template <class View, class Interface, class ViewDesc> class VideoView : public DeviceChild<View, Interface>
{
public:
    static constexpr Method kQueryMethod = Method::OtherQueryInterface;

    VideoView(ID3D11Device &device, ComRef<Texture2D> texture, const ViewDesc &desc) noexcept
        : DeviceChild<View, Interface>(device), m_texture(std::move(texture)), m_desc(desc)
    {
    }

    TextureStorage &Storage() const noexcept { return m_texture->Storage(); }

    void STDMETHODCALLTYPE GetResource(ID3D11Resource **ppResource) override
    {
        if (ppResource != nullptr) {
            *ppResource = Retain(m_texture.get()).release();
        }
    }

    void STDMETHODCALLTYPE GetDesc(ViewDesc *pDesc) override
    {
        if (pDesc != nullptr) {
            *pDesc = m_desc;
        }
    }

protected:
    const ViewDesc &Desc() const noexcept { return m_desc; }

private:
    const ComRef<Texture2D> m_texture;
    const ViewDesc m_desc;
};

} // namespace softd3d11
