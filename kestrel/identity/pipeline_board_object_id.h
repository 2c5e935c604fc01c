#pragma once

#include <kestrel/foundation/choice.h>
#include <kestrel/identity/object_id.h>
#include <optional>

namespace kestrel {

/// A card on a pipeline board: a project or an opportunity. In keyed form one key, "project" or "opportunity", holding
/// the identifier under "_0".
class PipelineBoardObjectID : public Choice<PipelineBoardObjectID, ObjectID<Project>, ObjectID<Opportunity>> {
  public:
    using Coded = void;

    /// A card of a board of projects.
    [[nodiscard]] static PipelineBoardObjectID project(ObjectID<Project> id) { return PipelineBoardObjectID(id); }
    /// A card of a board of opportunities.
    [[nodiscard]] static PipelineBoardObjectID opportunity(ObjectID<Opportunity> id) {
        return PipelineBoardObjectID(id);
    }

    [[nodiscard]] std::optional<ObjectID<Project>> project() const { return payload<ObjectID<Project>>(); }
    [[nodiscard]] std::optional<ObjectID<Opportunity>> opportunity() const { return payload<ObjectID<Opportunity>>(); }

    friend bool operator==(const PipelineBoardObjectID&, const PipelineBoardObjectID&) = default;

  private:
    friend CodingAccess;
    explicit PipelineBoardObjectID(Variant value) : Choice(std::move(value)) {}
};
extern template struct Codec<PipelineBoardObjectID>;

}  // namespace kestrel
