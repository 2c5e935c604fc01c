#pragma once

#include <host/session/account_login.h>
#include <kestrel/runtime/runtime.h>
#include <filesystem>
#include <memory>
#include <string>

namespace kestrel::host {

/// The login against the accounts of this machine, its session and its memory of who signed in last. To be added behind
/// the services of the system, which it uses.
struct SessionModule {
    std::string moduleName = "Session";
    std::filesystem::path accountsFile = AccountStore::standardFile();

    void registerIn(Runtime& runtime) const {
        const auto accounts = std::make_shared<AccountLogin>(accountsFile, runtime.find(services::systemClock),
                                                             runtime.find(services::systemDefaults));
        runtime[services::session] = accounts->session();
        runtime[services::loginStorage] = accounts->storage();
        runtime.install(login, accounts);
    }
};

}  // namespace kestrel::host
