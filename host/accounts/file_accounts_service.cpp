#include <host/accounts/file_accounts_service.h>
#include <host/services/service_results.h>
#include <host/store/directory.h>
#include <host/store/schema.h>
#include <host/store/store.h>

namespace kestrel::host {
namespace {

/// A Failure when the database has no such user, or several. One of an earlier version is not asked: the next login
/// brings it up to date, and then looks for the user itself.
void requireUser(const std::filesystem::path& database, const std::string& username) {
    if (checkedSchemaVersion(database) < schemaVersion) return;
    withDatabase(database, [&] {
        ReadingStore store(database);
        (void)Directory(store.database()).user(username);
    });
}

}  // namespace

AnyPublisher<std::vector<Account>, ReadError> FileAccountsService::fetchAccounts() {
    return reading([file = file_] {
        AccountStore store(file);
        std::vector<Account> all;
        for (std::string& email : store.accounts()) {
            const bool hasSecondFactor = store.hasSecondFactor(email);
            auto memberships = store.memberships(email);
            all.push_back({std::move(email), hasSecondFactor, std::move(memberships)});
        }
        return all;
    });
}

AnyPublisher<Never, UpdateError> FileAccountsService::addAccount(std::string email, std::string password) {
    return completing([file = file_, email = std::move(email), password = std::move(password)] {
        AccountStore(file).addAccount(email, password);
    });
}

AnyPublisher<Never, UpdateError> FileAccountsService::setPassword(std::string email, std::string password) {
    return completing([file = file_, email = std::move(email), password = std::move(password)] {
        AccountStore(file).setPassword(email, password);
    });
}

AnyPublisher<SecondFactor, UpdateError> FileAccountsService::addSecondFactor(std::string email) {
    return updating([file = file_, email = std::move(email)] { return AccountStore(file).addSecondFactor(email); });
}

AnyPublisher<Never, UpdateError> FileAccountsService::addCompany(std::string name, std::filesystem::path database,
                                                                 bool requiresOneTimeCode) {
    return completing([file = file_, name = std::move(name), database = std::move(database), requiresOneTimeCode] {
        (void)checkedSchemaVersion(database);
        AccountStore(file).addCompany(name, database, requiresOneTimeCode);
    });
}

AnyPublisher<Never, UpdateError> FileAccountsService::join(std::string email, std::string companyName,
                                                           std::string username) {
    return completing(
        [file = file_, email = std::move(email), companyName = std::move(companyName), username = std::move(username)] {
            AccountStore store(file);
            requireUser(store.databaseOf(companyName), username);
            store.join(email, companyName, username);
        });
}

AnyPublisher<Never, UpdateError> FileAccountsService::setActive(std::string email, std::string companyName,
                                                                bool isActive) {
    return completing([file = file_, email = std::move(email), companyName = std::move(companyName), isActive] {
        AccountStore(file).setActive(email, companyName, isActive);
    });
}

AnyPublisher<std::size_t, UpdateError> FileAccountsService::revokeDevices(std::string email) {
    return updating([file = file_, email = std::move(email)] { return AccountStore(file).revokeDevices(email); });
}

}  // namespace kestrel::host
