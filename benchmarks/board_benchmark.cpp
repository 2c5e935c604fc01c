// Boards of many cards: filtering, building and sorting them, against the plain way of doing it, and how the time and
// the allocations grow with the cards.

#include <benchmark/benchmark.h>
#include <kestrel/boards/board.h>
#include <kestrel/boards/board_filter.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "work.h"

namespace {

using namespace kestrel;

constexpr std::int64_t stageCount = 6;

struct Sample {
    std::vector<PipelineStageDefinition> stages{};
    std::vector<Opportunity> records{};
    std::vector<BoardCandidate> candidates{};
};

Sample sampleOf(std::int64_t count) {
    Sample sample;
    for (std::int64_t i = 0; i < stageCount; ++i) {
        sample.stages.push_back({.pipelineStageDefinitionID = i + 1, .order = i, .pipelineDefinitionID = 1});
    }
    std::mt19937_64 engine(1'966);
    for (std::int64_t i = 0; i < count; ++i) {
        const Date due(static_cast<double>(engine() % 500'000'000));
        const Date created(static_cast<double>(engine() % 500'000'000));
        const auto number = static_cast<std::int64_t>(engine() % 1'000'000);
        const std::string title = "Opportunity with the number " + std::to_string(number);
        sample.records.push_back({.opportunityID = i + 1,
                                  .createDate = created,
                                  .dueDate = due,
                                  .name = title,
                                  .category = Category{.categoryID = number % 10}});
        sample.candidates.push_back({.card = BoardCardData::opportunity(OpportunityBoardCardData::from(
                                         {.id = i + 1,
                                          .title = title,
                                          .linkedPeople = "Somebody, Somebody Else",
                                          .linkedCompanies = "Some Company Incorporated",
                                          .value = static_cast<double>(number),
                                          .probability = number % 101,
                                          .pipelineId = ObjectID<PipelineDefinition>(1),
                                          .stageId = ObjectID<PipelineStageDefinition>(number % stageCount + 1),
                                          .closeDate = due},
                                         {.calendar = Calendar::utc(), .now = Date(250'000'000)})),
                                     .createDate = created});
    }
    return sample;
}

/// The identifiers of a board's cards, column by column.
using Picture = std::vector<std::vector<std::int64_t>>;

Picture pictureOf(const BoardData& board) {
    Picture picture;
    for (const BoardColumnData& column : board.columns) {
        auto& ids = picture.emplace_back();
        for (const BoardCardData& card : column.cards)
            ids.push_back(card.opportunityCard()->id.value().value());
    }
    return picture;
}

/// The plain way: a map of columns, whole cards sorted, by a comparison of what they show.
Picture builtPlainly(const std::vector<BoardCandidate>& candidates, bool isByName) {
    std::map<std::int64_t, std::vector<BoardCandidate>> columns;
    for (const BoardCandidate& each : candidates)
        columns[each.card.stageID()->value().value()].push_back(each);
    Picture picture;
    for (auto& [stage, cards] : columns) {
        std::ranges::sort(cards, [&](const BoardCandidate& a, const BoardCandidate& b) {
            const auto keyOf = [&](const BoardCandidate& each) {
                const OpportunityBoardCardData& card = *each.card.opportunityCard();
                std::string name = isByName ? card.title : std::string();
                std::ranges::transform(name, name.begin(),
                                       [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
                return std::tuple(std::move(name), isByName ? Date() : *card.closeDate, card.id);
            };
            return keyOf(a) < keyOf(b);
        });
        auto& ids = picture.emplace_back();
        for (const BoardCandidate& each : cards)
            ids.push_back(each.card.opportunityCard()->id.value().value());
    }
    return picture;
}

BoardData built(const Sample& sample, PipelineBoardSortKey key) {
    return assembleBoard(BoardKind::opportunities, sample.stages, sample.candidates, key);
}

void addBoard(const std::shared_ptr<const Sample>& sample, PipelineBoardSortKey key, const std::string& sorted) {
    const bool isByName = key == PipelineBoardSortKey::name;
    if (pictureOf(built(*sample, key)) != builtPlainly(sample->candidates, isByName)) {
        std::fprintf(stderr, "The contenders disagree: board by %s\n", sorted.c_str());
        std::exit(1);
    }
    const std::string work = "board of " + std::to_string(sample->candidates.size()) + " by " + sorted;
    benchmark::RegisterBenchmark((work + "/kestrel").c_str(), [sample, key](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(built(*sample, key));
    })->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((work + "/whole cards").c_str(), [sample, isByName](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(builtPlainly(sample->candidates, isByName));
    })->Unit(benchmark::kMillisecond);
}

void addFilter(const std::shared_ptr<const Sample>& sample) {
    const OpportunityBoardFilter filter{
        .pipelineDefinitionID = 1, .categoryID = ObjectID<Category>(3), .createDate = PipelineBoardDateRange::thisYear};
    const CalendarMoment at{.calendar = Calendar::utc(), .now = Date(250'000'000)};
    const BoardRecordLinks links{.pipelineDefinitionID = ObjectID<PipelineDefinition>(1)};
    const auto count = [sample, filter, at, links](bool isResolvedOnce) {
        std::size_t found = 0;
        const OpportunityBoardMatcher matcher(filter, at.calendar, at.now);
        for (const Opportunity& record : sample->records) {
            if (isResolvedOnce) {
                found += matcher.matches(record, links) ? 1U : 0U;
            } else {
                found += OpportunityBoardMatcher(filter, at.calendar, at.now).matches(record, links) ? 1U : 0U;
            }
        }
        return found;
    };
    if (count(true) != count(false)) {
        std::fprintf(stderr, "The contenders disagree: filter\n");
        std::exit(1);
    }
    const std::string work = "filter " + std::to_string(sample->records.size());
    for (const bool isResolvedOnce : {true, false}) {
        benchmark::RegisterBenchmark((work + (isResolvedOnce ? "/kestrel" : "/ranges resolved for each")).c_str(),
                                     [count, isResolvedOnce](benchmark::State& state) {
                                         for (auto _ : state)
                                             benchmark::DoNotOptimize(count(isResolvedOnce));
                                     })
            ->Unit(benchmark::kMillisecond);
    }
}

}  // namespace

void benchmarks::addBoards() {
    for (const std::int64_t count : {10'000, 100'000}) {
        const auto sample = std::make_shared<const Sample>(sampleOf(count));
        addBoard(sample, PipelineBoardSortKey::forecasted, "forecast");
        addBoard(sample, PipelineBoardSortKey::name, "name");
        addFilter(sample);
    }
}
