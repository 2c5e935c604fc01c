#pragma once

namespace kestrel {

/// How dates are written and read. Only the deferred form keeps every bit of a date; the forms since 1970 round to what
/// a double holds there, some tenths of a microsecond, and ISO 8601 to microseconds.
enum class DateStrategy {
    deferred,               ///< seconds since 2001-01-01T00:00:00Z, as a number
    secondsSince1970,       ///< seconds since 1970-01-01T00:00:00Z, as a number
    millisecondsSince1970,  ///< milliseconds since 1970-01-01T00:00:00Z, as a number
    iso8601,  ///< a text such as "2017-03-01T00:00:00Z"; written in UTC, read with any offset; years 1 to 9999
};

/// What the keyed form leaves open. Reading takes the options that the writer had.
struct CodingOptions {
    /// For every date of the document.
    DateStrategy dateStrategy{DateStrategy::deferred};

    friend bool operator==(const CodingOptions&, const CodingOptions&) = default;
};

}  // namespace kestrel
