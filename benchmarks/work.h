#pragma once

/// What is measured: each function compares the results of all contenders, and stops the program when they disagree,
/// before it adds its benchmarks. A benchmark is called "WORK/CONTENDER"; the library is "kestrel".
namespace benchmarks {

void addCoding();
void addActivity();
void addReplay();
void addBoards();
void addSmallThings();
/// What a contact takes in memory, on average over the samples.
void printContactMemory();

}  // namespace benchmarks
