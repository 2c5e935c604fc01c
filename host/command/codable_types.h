#pragma once

#include <kestrel/coding/coding_error.h>
#include <kestrel/coding/coding_options.h>
#include <cstddef>
#include <expected>
#include <string>
#include <string_view>
#include <vector>

/// The codable types of the library by name, for reading documents of a type that is known only when the program runs.
namespace kestrel::host {

/// Why a document has no value of a type, or its value no keyed form under the same options.
struct CodingFailure {
    std::string kind{};
    CodingPath path{};
    std::string description{};
    /// Where the trouble starts in the document, in bytes; 0 when it was read and cannot be written.
    std::size_t offset{};
    /// All of that in one line.
    std::string message{};
};

/// The document's value written again in keyed form.
using Recoded = std::expected<std::string, CodingFailure>;
using Recoder = Recoded (*)(std::string_view document, const CodingOptions& options);

struct CodableType {
    std::string name;
    Recoder value;
    /// Of an array of such values.
    Recoder array;
};

/// All of them: the scalars, the identifiers, then the rest in alphabetical order.
[[nodiscard]] const std::vector<CodableType>& codableTypes();

/// The recoder of a type by its name, such as "Opportunity", or of an array, such as "[Opportunity]". Null when there
/// is no such type.
[[nodiscard]] Recoder recoderOf(std::string_view typeName);

}  // namespace kestrel::host
