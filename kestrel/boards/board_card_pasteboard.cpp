#include <kestrel/boards/board_card_pasteboard.h>
#include <kestrel/coding/json.h>
#include <kestrel/coding/wire_form.h>

namespace kestrel {
namespace {

/// The members of a dragged card, as they are written.
struct PasteboardFields {
    using Coded = void;

    PipelineBoardObjectID id;
    std::optional<ObjectID<PipelineDefinition>> pipelineId{};
    std::optional<ObjectID<PipelineStageDefinition>> stageId{};
};

PasteboardFields fieldsOf(const PipelineBoardCardPasteboardData& value) {
    return {.id = value.id(), .pipelineId = value.pipelineId(), .stageId = value.stageId()};
}

/// The media type of data of any kind.
constexpr std::string_view anyData = "application/octet-stream";

}  // namespace

KESTREL_FIELDS(PasteboardFields, id, pipelineId, stageId);

PipelineBoardCardPasteboardData::PipelineBoardCardPasteboardData()
    : id_(PipelineBoardObjectID::opportunity(ObjectID<Opportunity>())) {}

PipelineBoardCardPasteboardData::PipelineBoardCardPasteboardData(
    PipelineBoardObjectID id, std::optional<ObjectID<PipelineDefinition>> pipelineId,
    std::optional<ObjectID<PipelineStageDefinition>> stageId)
    : id_(std::move(id)), pipelineId_(pipelineId), stageId_(stageId) {}

std::vector<std::string> PipelineBoardCardPasteboardData::writableTypeIdentifiersForItemProvider() {
    return {std::string(anyData)};
}

std::vector<std::string> PipelineBoardCardPasteboardData::readableTypeIdentifiersForItemProvider() {
    return {std::string(anyData)};
}

void PipelineBoardCardPasteboardData::loadData(
    std::string_view /*typeIdentifier*/,
    const std::function<void(std::expected<Data, EncodingError>)>& completion) const {
    auto encoded = encodeJSON(*this);
    if (encoded) {
        completion(Data::fromText(*encoded));
    } else {
        completion(std::unexpected(std::move(encoded.error())));
    }
}

std::expected<std::shared_ptr<PipelineBoardCardPasteboardData>, PipelineBoardCardPasteboardData::Error>
PipelineBoardCardPasteboardData::decode(const Data& itemProviderData, std::string_view /*typeIdentifier*/) {
    auto decoded = decodeJSON<PipelineBoardCardPasteboardData>(itemProviderData.text());
    if (!decoded) return std::unexpected(Error(std::move(decoded.error())));
    return std::make_shared<PipelineBoardCardPasteboardData>(*std::move(decoded));
}

bool Codec<PipelineBoardCardPasteboardData>::encode(JSONWriter& writer, const PipelineBoardCardPasteboardData& value) {
    return encodeValue(writer, fieldsOf(value));
}

bool Codec<PipelineBoardCardPasteboardData>::decode(JSONReader& reader, PipelineBoardCardPasteboardData& value) {
    auto fields = blankValue<PasteboardFields>();
    if (!decodeValue(reader, fields)) return false;
    value = PipelineBoardCardPasteboardData(std::move(fields.id), fields.pipelineId, fields.stageId);
    return true;
}

PipelineBoardCardPasteboardData Codec<PipelineBoardCardPasteboardData>::blank() {
    return {blankValue<PipelineBoardObjectID>(), std::nullopt, std::nullopt};
}

void Codec<PipelineBoardCardPasteboardData>::hash(Hasher& hasher, const PipelineBoardCardPasteboardData& value) {
    hashValue(hasher, fieldsOf(value));
}

void Codec<PipelineBoardCardPasteboardData>::mirror(DebugMirror& mirror, const PipelineBoardCardPasteboardData& value) {
    mirrorValue(mirror, fieldsOf(value));
}

}  // namespace kestrel
