#pragma once

#include <kestrel/platform/workspace.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

/// The desktop's applications as GIO knows them: by the scheme of the URL ("x-scheme-handler/https"), and for files by
/// the type of their content. An application counts for a type when `mimeapps.list` or a desktop database says so; its
/// own `MimeType=` line is not enough.
///
/// Errors are GIO's: "g-io-error-quark" with G_IO_ERROR_NOT_SUPPORTED where no application opens the URL. One whose
/// program is missing is none. A desktop that does not answer for five seconds is G_IO_ERROR_TIMED_OUT. Handed over
/// means that the program was started; GIO does so through a helper, and what fails from there on nobody reports.
class GIOWorkspace final : public Workspace {
  public:
    [[nodiscard]] std::vector<std::string> applicationsToOpen(const URL& url) const override;
    void open(const URL& url, CompletionHandler completionHandler) override;
};

/// Shows places by handing a geo: URI (RFC 5870) to the workspace. What becomes of it afterwards is not known: true
/// means that an application for maps is there, and will be given the place.
class GeoURIMapApplication final : public MapApplication {
  public:
    explicit GeoURIMapApplication(std::shared_ptr<Workspace> workspace) : workspace_(std::move(workspace)) {}

    [[nodiscard]] bool open(const MapItem& item) override;

    /// "geo:47.37,8.54?q=47.37,8.54(label)", the form that map applications read labels from. Absent for coordinates
    /// that are not on the Earth.
    [[nodiscard]] static std::optional<URL> uriOf(const MapItem& item);

  private:
    std::shared_ptr<Workspace> workspace_;
};

}  // namespace kestrel
