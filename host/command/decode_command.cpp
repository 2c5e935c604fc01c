#include <fmt/format.h>
#include <host/command/codable_types.h>
#include <host/command/decode_command.h>
#include <host/failure.h>
#include <host/terminal/file.h>
#include <host/terminal/json_object.h>
#include <host/terminal/text.h>

#include <variant>
#include <vector>

namespace kestrel::host {
namespace {

std::string pathJSON(const CodingPath& path) {
    std::vector<std::string> steps;
    for (const CodingKey& key : path.keys()) {
        if (const auto* name = std::get_if<std::string>(&key)) {
            steps.push_back(JSONObject::encoded(validUTF8(*name)));
        } else {
            steps.push_back(std::to_string(std::get<std::size_t>(key)));
        }
    }
    return JSONObject::array(steps);
}

/// What a line of input came to.
std::string verdictJSON(const Recoded& recoded) {
    if (recoded) return JSONObject().addJSON("value", *recoded).json();
    const CodingFailure& failure = recoded.error();
    JSONObject error;
    error.add("kind", failure.kind);
    error.addJSON("path", pathJSON(failure.path));
    error.add("description", failure.description);
    error.add("offset", failure.offset);
    return JSONObject().add("error", error).json();
}

}  // namespace

int decodeCommand(const DecodeOptions& options, Output& output, const Terminal& terminal) {
    if (options.listsTypes) {
        for (const CodableType& type : codableTypes())
            output.write(type.name + "\n");
        return 0;
    }
    const Recoder recode = recoderOf(options.typeName);
    if (recode == nullptr) {
        std::vector<std::string> names;
        for (const CodableType& type : codableTypes())
            names.push_back(type.name);
        throw WrongUsage(
            fmt::format("there is no type \"{}\"; there is, alone or as [TYPE]: {}", options.typeName, listed(names)));
    }
    LineSource input(options.file);
    if (options.isByLine) {
        for (;;) {
            // Whoever sends a line and waits for its verdict gets it.
            if (!input.hasLine()) output.flush();
            const auto line = input.next();
            if (!line) return 0;
            writeJSONLine(verdictJSON(recode(*line, options.coding)), output, terminal);
        }
    }
    const Recoded recoded = recode(input.rest(), options.coding);
    if (!recoded) {
        writeErrorLine("error: " + recoded.error().message);
        return 1;
    }
    writeJSONLine(*recoded, output, terminal);
    return 0;
}

}  // namespace kestrel::host
