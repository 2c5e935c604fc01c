#pragma once

#include <kestrel/identity/object_id.h>
#include <kestrel/records/contact.h>
#include <kestrel/records/name.h>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// How contacts are called in lists and on pages. Locales are those of Name::localized; an empty one is the user's.
namespace kestrel::host {

/// Whether a text has the form of a locale of BCP 47 or POSIX: "de-AT", "ja_JP.UTF-8", "sr_RS@latin".
[[nodiscard]] bool isLocale(std::string_view text);

/// First and last name as people of the locale write them, else the nickname, the alias, or the identifier's text:
/// never empty.
[[nodiscard]] std::string shownName(const ObjectID<Contact>& id, const Name& name, std::string_view locale = {});
[[nodiscard]] std::string shownName(const Contact& contact, std::string_view locale = {});

/// The whole name with all of its parts, else as `shownName`.
[[nodiscard]] std::string fullName(const Contact& contact, std::string_view locale = {});

/// The name for lists in the order of family names, "Lovelace, Ada", else as `shownName`.
[[nodiscard]] std::string sortingName(const ObjectID<Contact>& id, const Name& name, std::string_view locale = {});

/// Every way in which people may write a contact's name, in lower case: in full, first and last name in either order,
/// nickname and alias.
[[nodiscard]] std::vector<std::string> foldedNames(const Name& name, std::string_view locale = {});

/// A text of a record when there is one that is not empty.
[[nodiscard]] std::optional<std::string> textIn(const std::optional<std::string>& text);

}  // namespace kestrel::host
