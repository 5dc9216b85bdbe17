#pragma once
// Registers the "pryxa" scheme as a temporary namespace of this process
// (IInternetSession::RegisterNameSpace) for the object's lifetime, served from one content
// table. Made and destroyed on one thread with COM initialised; the destructor unregisters
// and closes the table, so that a protocol that urlmon still holds serves nothing more.

#include "browser/ProtocolContent.h"

#include <urlmon.h>
#include <wrl/client.h>

#include <memory>

namespace browser {

class ProtocolRegistration {
public:
    explicit ProtocolRegistration(std::shared_ptr<ProtocolContent> content);
    ~ProtocolRegistration();
    ProtocolRegistration(const ProtocolRegistration&) = delete;
    ProtocolRegistration& operator=(const ProtocolRegistration&) = delete;

    bool registered() const { return factory_ != nullptr; }
    ProtocolContent& content() { return *content_; }

private:
    std::shared_ptr<ProtocolContent> content_;
    Microsoft::WRL::ComPtr<IInternetSession> session_;
    Microsoft::WRL::ComPtr<IClassFactory> factory_; // null when not registered
};

} // namespace browser
