#pragma once

#include <host/accounts/file_accounts_service.h>
#include <host/session/account_login.h>
#include <kestrel/runtime/runtime.h>
#include <filesystem>
#include <memory>
#include <string>

namespace kestrel::host {

/// The accounts of this machine, the login against them, its session and its memory of who signed in last. To be added
/// behind the services of the system, which it uses.
struct SessionModule {
    std::string moduleName = "Session";
    std::filesystem::path accountsFile = AccountStore::standardFile();

    void registerIn(Runtime& runtime) const {
        const auto signingIn = std::make_shared<AccountLogin>(accountsFile, runtime.find(services::systemClock),
                                                              runtime.find(services::systemDefaults));
        runtime[services::session] = signingIn->session();
        runtime[services::loginStorage] = signingIn->storage();
        runtime.install(login, signingIn);
        runtime.install(host_services::accounts, std::make_shared<FileAccountsService>(accountsFile));
    }
};

}  // namespace kestrel::host
