#include <fmt/format.h>
#include <host/board/board_rendering.h>
#include <host/terminal/text.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace kestrel::host {
namespace {

constexpr std::string_view absent = "-";

/// Whether a date lies in the years that calendars reach.
bool isReachable(Date date) {
    return date >= Date::distantPast() && date < Date::distantFuture();
}

/// Whole days since the card entered its stage; "-" when it is not known, or still to come.
std::string daysInStage(const BoardCardData& card, const CalendarMoment& at) {
    const auto& start = card.stageStartDate();
    if (!start || !isReachable(*start)) return std::string(absent);
    const int days = at.calendar.daysBetween(*start, at.now);
    return days < 0 ? std::string(absent) : grouped(days);
}

/// The day of the next task or appointment.
std::string nextActivity(const BoardCardData& card, const CalendarMoment& at) {
    const auto& activities = card.nextActivities();
    if (!activities || activities->empty()) return std::string(absent);
    const NextActivity& next = activities->front();
    const std::string_view kind = next.isAppointment() ? "appointment" : "task";
    if (!isReachable(next.date)) return std::string(kind);
    const std::chrono::year_month_day day(at.calendar.dayOf(next.date));
    return fmt::format("{} {:04}-{:02}-{:02}", kind, static_cast<int>(day.year()), static_cast<unsigned>(day.month()),
                       static_cast<unsigned>(day.day()));
}

/// The companies, and behind them in parentheses the people.
std::string companiesAndPeople(const BoardCardData& card) {
    const std::string companies = printable(card.linkedCompanies());
    const std::string people = printable(card.linkedPeople());
    const std::string shown = companies.empty() ? std::string(absent) : companies;
    return people.empty() ? shown : fmt::format("{} ({})", shown, people);
}

/// What a card shows, ready to print.
struct CardText {
    std::string title;
    std::string company;
    std::string value;
    std::string probability;
    std::string days;
    std::string next;
    std::optional<RGBAColor> color;
};

CardText cardText(const BoardCardData& card, const CalendarMoment& at) {
    const OpportunityBoardCardData* opportunity = card.opportunityCard();
    return {.title = printable(card.title()),
            .company = companiesAndPeople(card),
            .value = opportunity != nullptr ? amount(opportunity->value) : std::string(absent),
            .probability = opportunity != nullptr ? fmt::format("{}%", opportunity->probability) : std::string(absent),
            .days = daysInStage(card, at),
            .next = nextActivity(card, at),
            .color = card.categoryColor()};
}

/// The first cards of a column, as far as the limit goes.
std::vector<CardText> cardTexts(const BoardColumnData& column, const BoardPicture& picture) {
    std::vector<CardText> texts;
    for (const BoardCardData& card : column.cards) {
        if (picture.limit != 0 && texts.size() == picture.limit) break;
        texts.push_back(cardText(card, picture.at));
    }
    return texts;
}

std::string columnTitle(const BoardColumnHeaderData& header) {
    const std::string title = printable(header.title);
    const std::string name = title.empty() ? fmt::format("Stage {}", header.id) : title;
    return header.active ? name : name + " (deleted)";
}

std::string countOf(std::int64_t count) {
    return fmt::format("{} {}", grouped(count), count == 1 ? "opportunity" : "opportunities");
}

std::string moreText(std::size_t count) {
    return fmt::format("… and {} more", grouped(static_cast<std::int64_t>(count)));
}

// ---------------------------------------------------------------------------------------------------------------
// as sections

std::string renderedSections(const BoardPicture& picture) {
    struct TableColumn {
        std::string_view title;
        std::string CardText::* text;
        Alignment alignment;
    };
    static constexpr std::array columns{TableColumn{"TITLE", &CardText::title, Alignment::left},
                                        TableColumn{"COMPANY", &CardText::company, Alignment::left},
                                        TableColumn{"VALUE", &CardText::value, Alignment::right},
                                        TableColumn{"PROBABILITY", &CardText::probability, Alignment::right},
                                        TableColumn{"DAYS IN STAGE", &CardText::days, Alignment::right},
                                        TableColumn{"NEXT ACTIVITY", &CardText::next, Alignment::left}};
    const BoardData& board = picture.board;
    std::string text = fmt::format("{} as {} sees it: {}, total {}\n", printable(picture.pipelineName),
                                   printable(picture.userName), countOf(board.count), amount(board.total));
    if (!picture.filterText.empty()) text += fmt::format("Filter: {}\n", printable(picture.filterText));
    text += fmt::format("Sort: {}\n", printable(picture.sortText));
    for (const BoardColumnData& column : board.columns) {
        text += fmt::format("\n{}: {}, total {}\n", columnTitle(column.header), countOf(column.header.count),
                            amount(column.header.total.value_or(0)));
        const std::vector<CardText> cards = cardTexts(column, picture);
        if (cards.empty()) continue;
        std::array<std::size_t, columns.size()> widths{};
        for (std::size_t i = 0; i < columns.size(); ++i) {
            widths[i] = columns[i].title.size();
            for (const CardText& card : cards)
                widths[i] = std::max(widths[i], displayWidth(card.*columns[i].text));
        }
        const auto appendRow = [&](auto&& textOf) {
            std::string row;
            for (std::size_t i = 0; i < columns.size(); ++i)
                row += "  " + padded(textOf(columns[i]), widths[i], columns[i].alignment);
            row.erase(row.find_last_not_of(' ') + 1);
            text += row + '\n';
        };
        appendRow([](const TableColumn& tableColumn) { return std::string(tableColumn.title); });
        for (const CardText& card : cards)
            appendRow([&](const TableColumn& tableColumn) { return card.*tableColumn.text; });
        if (column.cards.size() > cards.size())
            text += fmt::format("  {}\n", moreText(column.cards.size() - cards.size()));
    }
    return text;
}

// ---------------------------------------------------------------------------------------------------------------
// side by side

/// A piece of a line in one style, an SGR parameter such as "1" or "38;5;21"; empty for the usual one.
struct Span {
    std::string text;
    std::string style{};
};
using Line = std::vector<Span>;

constexpr std::string_view bold = "1";
constexpr std::string_view dim = "2";

/// The nearest of the 216 colours that terminals have a cube of.
std::string cubeColor(const RGBAColor& color) {
    constexpr int edge = 5;
    const auto step = [](double component) {
        return static_cast<int>(std::lround(std::clamp(component, 0.0, 1.0) * edge));
    };
    return fmt::format("38;5;{}", 16 + 36 * step(color.red) + 6 * step(color.green) + step(color.blue));
}

/// The line in exactly `width` cells.
std::string fittedLine(const Line& line, std::size_t width, bool hasColor) {
    std::string text;
    std::size_t left = width;
    for (const Span& span : line) {
        const std::string shown = fitted(span.text, left);
        left -= displayWidth(shown);
        text += hasColor && !span.style.empty() ? fmt::format("\033[{}m{}\033[0m", span.style, shown) : shown;
    }
    return text + std::string(left, ' ');
}

/// A column of the board, from its header down.
std::vector<Line> columnLines(const BoardColumnData& column, const BoardPicture& picture, std::size_t width) {
    const BoardColumnHeaderData& header = column.header;
    std::string rule;
    for (std::size_t i = 0; i < width; ++i)
        rule += "─";
    std::vector<Line> lines{{{columnTitle(header), std::string(bold)}, {"  " + grouped(header.count)}},
                            {{"total " + amount(header.total.value_or(0)), std::string(dim)}},
                            {{std::move(rule), std::string(dim)}}};
    const std::vector<CardText> cards = cardTexts(column, picture);
    for (const CardText& card : cards) {
        const std::string mark = card.color ? cubeColor(*card.color) : std::string(dim);
        const std::string facts =
            fmt::format("{} · {} · {} d · {}", card.value, card.probability, card.days, card.next);
        lines.push_back({{"▌", mark}, {card.title, std::string(bold)}});
        lines.push_back({{"▌", mark}, {card.company}});
        lines.push_back({{"▌", mark}, {facts, std::string(dim)}});
        lines.emplace_back();
    }
    if (column.cards.size() > cards.size())
        lines.push_back({{moreText(column.cards.size() - cards.size()), std::string(dim)}});
    return lines;
}

std::string renderedSideBySide(const BoardPicture& picture, const Terminal& terminal) {
    constexpr std::size_t gap = 2;
    constexpr std::size_t narrowest = 24;
    constexpr std::size_t widest = 48;
    const BoardData& board = picture.board;
    const auto inWidth = [&](const Line& line) {
        std::string text = fittedLine(line, terminal.width, terminal.hasColor);
        text.erase(text.find_last_not_of(' ') + 1);
        return text + '\n';
    };
    std::string text = inWidth({{printable(picture.pipelineName), std::string(bold)},
                                {fmt::format(" as {} sees it: {}, total {}", printable(picture.userName),
                                             countOf(board.count), amount(board.total))}});
    if (!picture.filterText.empty()) text += inWidth({{"Filter: " + printable(picture.filterText)}});
    text += inWidth({{"Sort: " + printable(picture.sortText)}});

    const std::size_t fitting = std::max<std::size_t>(1, (terminal.width + gap) / (narrowest + gap));
    const std::size_t perRow = std::min(fitting, std::max<std::size_t>(1, board.columns.size()));
    const std::size_t width = std::min(widest, (terminal.width + gap) / perRow - gap);
    for (std::size_t first = 0; first < board.columns.size(); first += perRow) {
        std::vector<std::vector<Line>> columns;
        for (std::size_t i = first; i < std::min(first + perRow, board.columns.size()); ++i)
            columns.push_back(columnLines(board.columns[i], picture, width));
        const std::size_t height = std::ranges::max(columns, {}, &std::vector<Line>::size).size();
        text += '\n';
        for (std::size_t row = 0; row < height; ++row) {
            std::string line;
            for (const auto& column : columns) {
                if (!line.empty()) line.append(gap, ' ');
                line += fittedLine(row < column.size() ? column[row] : Line(), width, terminal.hasColor);
            }
            line.erase(line.find_last_not_of(' ') + 1);
            text += line + '\n';
        }
    }
    return text;
}

}  // namespace

std::string rendered(const BoardPicture& picture, const Terminal& terminal) {
    return terminal.isTerminal ? renderedSideBySide(picture, terminal) : renderedSections(picture);
}

}  // namespace kestrel::host
