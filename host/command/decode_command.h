#pragma once

#include <host/terminal/output.h>
#include <kestrel/coding/coding_options.h>
#include <optional>
#include <string>

namespace kestrel::host {

/// `kestrel decode TYPE [FILE]`.
struct DecodeOptions {
    std::string typeName{};
    /// Standard input when absent.
    std::optional<std::string> file{};
    CodingOptions coding{};
    /// Every line is a document of its own, and gets a line of output.
    bool isByLine{};
    /// Lists the types instead.
    bool listsTypes{};
};

/// Reads documents of a codable type and writes them again, or says why they cannot be read. The exit code: 1 when the
/// one document cannot be read; by line 0, whatever the documents are.
int decodeCommand(const DecodeOptions& options, Output& output, const Terminal& terminal);

}  // namespace kestrel::host
