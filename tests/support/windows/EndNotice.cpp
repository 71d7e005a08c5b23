#include "windows/EndNotice.h"

#include "windows/CountedObject.h"

#include <cstdlib>
#include <utility>

namespace xelttest {

namespace {

// Private data of the object, whose only reference goes with it.
class EndNotice final : public CountedObject<IUnknown>
{
public:
    explicit EndNotice(std::function<void()> action) : m_action(std::move(action)) {}
    ~EndNotice() override { m_action(); }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void **ppObject) override
    {
        if (!IsEqualGUID(iid, IID_IUnknown)) {
            *ppObject = nullptr;
            return E_NOINTERFACE;
        }
        AddRef();
        *ppObject = this;
        return S_OK;
    }

private:
    std::function<void()> m_action;
};

constexpr GUID k_aNotices[] = {
    {0x6f0b9d0e, 0x3a51, 0x4c77, {0x9b, 0x2e, 0x41, 0x5d, 0x10, 0x8a, 0x73, 0x01}},
    {0x6f0b9d0e, 0x3a51, 0x4c77, {0x9b, 0x2e, 0x41, 0x5d, 0x10, 0x8a, 0x73, 0x02}}};

template <typename Object> void attach(Object &object, Notice notice, std::function<void()> action)
{
    auto *pNotice = new EndNotice(std::move(action));
    if (FAILED(object.SetPrivateDataInterface(k_aNotices[static_cast<size_t>(notice)], pNotice))) {
        std::abort(); // all that counts objects would be wrong from here on
    }
    pNotice->Release();
}

} // namespace

void whenItEnds(ID3D11DeviceChild &object, Notice notice, std::function<void()> action)
{
    attach(object, notice, std::move(action));
}

void whenItEnds(ID3D11Device &device, Notice notice, std::function<void()> action)
{
    attach(device, notice, std::move(action));
}

} // namespace xelttest
