#pragma once

#include <kestrel/boards/pipeline.h>
#include <kestrel/coding/codec.h>
#include <kestrel/coding/coding_error.h>
#include <kestrel/foundation/data.h>
#include <kestrel/identity/object_id.h>
#include <kestrel/identity/pipeline_board_object_id.h>
#include <concepts>
#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace kestrel {

/// An error that is known by its domain and a code within it.
struct DomainError {
    /// Who counts the codes.
    std::string_view domain{};
    /// What happened.
    std::int64_t code{};

    friend bool operator==(const DomainError&, const DomainError&) = default;
};

/// A board card on its way from one column to another, by drag and drop. Its bytes are its keyed form as JSON, with the
/// keys "id", "pipelineId" and "stageId".
class PipelineBoardCardPasteboardData {
  public:
    using Coded = void;

    /// The domain of this area's errors. Code 0: what was dropped is not of the class that was asked for.
    static constexpr std::string_view errorDomain = "com.fenwick.kestrel.boards";
    /// Why an object was not made.
    using Error = std::variant<DomainError, DecodingError>;

    /// A new, unsaved opportunity in no column.
    PipelineBoardCardPasteboardData();
    /// Of a card in that column.
    PipelineBoardCardPasteboardData(PipelineBoardObjectID id, std::optional<ObjectID<PipelineDefinition>> pipelineId,
                                    std::optional<ObjectID<PipelineStageDefinition>> stageId);
    PipelineBoardCardPasteboardData(const PipelineBoardCardPasteboardData&) = default;
    PipelineBoardCardPasteboardData(PipelineBoardCardPasteboardData&&) = default;
    PipelineBoardCardPasteboardData& operator=(const PipelineBoardCardPasteboardData&) = default;
    PipelineBoardCardPasteboardData& operator=(PipelineBoardCardPasteboardData&&) = default;
    virtual ~PipelineBoardCardPasteboardData() = default;

    /// The record that the card shows.
    [[nodiscard]] const PipelineBoardObjectID& id() const noexcept { return id_; }
    /// The template of the pipeline that it comes from; absent for none.
    [[nodiscard]] const std::optional<ObjectID<PipelineDefinition>>& pipelineId() const noexcept { return pipelineId_; }
    /// The column that it comes from; absent for none.
    [[nodiscard]] const std::optional<ObjectID<PipelineStageDefinition>>& stageId() const noexcept { return stageId_; }

    /// The media types that drag and drop offers and accepts: one, that of data of any kind.
    [[nodiscard]] static std::vector<std::string> writableTypeIdentifiersForItemProvider();
    /// The media types that dropping accepts: the same one.
    [[nodiscard]] static std::vector<std::string> readableTypeIdentifiersForItemProvider();

    /// Hands the bytes, or why there are none, to `completion` before it returns.
    void loadData(std::string_view typeIdentifier,
                  const std::function<void(std::expected<Data, EncodingError>)>& completion) const;
    /// The object that the bytes describe, as a `Requested`. What is not JSON of the right form fails as decoding does;
    /// an object of another class fails with code 0 of the error domain.
    template <std::derived_from<PipelineBoardCardPasteboardData> Requested = PipelineBoardCardPasteboardData>
    [[nodiscard]] static std::expected<std::shared_ptr<Requested>, Error> object(const Data& itemProviderData,
                                                                                 std::string_view typeIdentifier) {
        auto decoded = decode(itemProviderData, typeIdentifier);
        if (!decoded) return std::unexpected(std::move(decoded.error()));
        if (auto requested = std::dynamic_pointer_cast<Requested>(*decoded)) return requested;
        return std::unexpected(Error(DomainError{errorDomain, 0}));
    }

    friend bool operator==(const PipelineBoardCardPasteboardData&, const PipelineBoardCardPasteboardData&) = default;

  private:
    friend struct Codec<PipelineBoardCardPasteboardData>;
    [[nodiscard]] static std::expected<std::shared_ptr<PipelineBoardCardPasteboardData>, Error> decode(
        const Data& itemProviderData, std::string_view typeIdentifier);

    PipelineBoardObjectID id_;
    std::optional<ObjectID<PipelineDefinition>> pipelineId_;
    std::optional<ObjectID<PipelineStageDefinition>> stageId_;
};

template <>
struct Codec<PipelineBoardCardPasteboardData> {
    static bool encode(JSONWriter& writer, const PipelineBoardCardPasteboardData& value);
    static bool decode(JSONReader& reader, PipelineBoardCardPasteboardData& value);
    static PipelineBoardCardPasteboardData blank();
    static void hash(Hasher& hasher, const PipelineBoardCardPasteboardData& value);
    static void mirror(DebugMirror& mirror, const PipelineBoardCardPasteboardData& value);
};

}  // namespace kestrel
