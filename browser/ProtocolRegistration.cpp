#include "browser/ProtocolRegistration.h"

#include "browser/PryxaProtocol.h"
#include "browser/ResourceAddress.h"

namespace browser {

namespace {

// Names the protocol's class in the session; nothing is registered under it elsewhere.
const CLSID kPryxaProtocolClass = {0x7ff3e4b6, 0xe039, 0x4f27, {0xa0, 0x7e, 0xe7, 0xc3, 0x63, 0x18, 0xbc, 0xa9}};

} // namespace

ProtocolRegistration::ProtocolRegistration(std::shared_ptr<ProtocolContent> content) : content_(std::move(content))
{
    if (FAILED(CoInternetGetSession(0, &session_, 0)))
        return;
    const Microsoft::WRL::ComPtr<IClassFactory> factory = makeComObject<PryxaProtocolFactory>(content_);
    if (SUCCEEDED(session_->RegisterNameSpace(factory.Get(), kPryxaProtocolClass, kPryxaScheme, 0, nullptr, 0)))
        factory_ = factory;
}

ProtocolRegistration::~ProtocolRegistration()
{
    if (factory_)
        session_->UnregisterNameSpace(factory_.Get(), kPryxaScheme);
    content_->close();
}

} // namespace browser
