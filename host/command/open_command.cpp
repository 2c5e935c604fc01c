#include <fmt/format.h>
#include <host/command/awaiting.h>
#include <host/command/open_command.h>
#include <host/failure.h>
#include <kestrel/services/system_services_module.h>
#include <kestrel/services/system_url_service.h>

namespace kestrel::host {

void openCommand(const std::string& url) {
    const auto parsed = URL::parse(url);
    if (!parsed) throw WrongUsage(fmt::format("\"{}\" is no URL, such as https://example.com", url));
    Runtime runtime = Runtime::makeSystem();
    if (!runtime[services::systemURL].canOpenURL(*parsed))
        throw Failure(fmt::format("no application opens {} URLs; `kestrel doctor` says more", parsed->scheme()));
    const auto opened = awaited(runtime[services::systemURL].openURL(*parsed));
    if (!opened) throw Failure(fmt::format("{}: {}", parsed->text(), opened.error().localizedDescription));
}

}  // namespace kestrel::host
