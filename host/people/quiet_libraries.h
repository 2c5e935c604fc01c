#pragma once

namespace kestrel::host {

/// As long as it lives, what GLib-based libraries would write to standard error about their input goes nowhere: what is
/// wrong with a file is told in the import's own words, with its line.
class QuietLibraries {
  public:
    QuietLibraries();
    ~QuietLibraries();
    QuietLibraries(const QuietLibraries&) = delete;
    QuietLibraries& operator=(const QuietLibraries&) = delete;

  private:
    using AnyFunction = void (*)();
    /// What took the messages before.
    AnyFunction before_;
};

}  // namespace kestrel::host
