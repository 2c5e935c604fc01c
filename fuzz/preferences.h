#pragma once

#include <fuzz/fuzzing.h>
#include <kestrel/platform/linux/sqlite_user_defaults.h>

#include <filesystem>
#include <map>
#include <string>
#include <string_view>

/// What the targets share that have a file of preferences.
namespace kestrel::fuzzing {

/// In a folder in memory that goes away with the program. Asked for before SQLite begins.
const std::filesystem::path& preferencesFile();
/// With what SQLite puts beside it.
void removePreferences();

/// A value as a text that is equal when the value is, bit for bit.
std::string shown(const DefaultsValue& value);

/// The values of all keys, as they are shown.
using PreferencesContent = std::map<std::string, std::string>;

/// Reads each as whatever else it may be, too.
PreferencesContent contentOf(const SQLiteUserDefaults& store);

DefaultsValue valueFrom(Script& script);
Data dataOf(std::string_view bytes);
/// One of those that are easily lost: zeros, infinities, what is no number.
double unusualNumber(unsigned choice);

}  // namespace kestrel::fuzzing
