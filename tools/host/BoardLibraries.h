// The three board libraries the module binds, in the order it tries them,
// and which of them a process has loaded: the one list voractl, the tests
// and the fuzz targets name them, find them and simulate them from.
#pragma once

#include <optional>
#include <string>

namespace voradrv::host {

struct KnownLibrary {
    const char* name;        // "libVORA-4.00"
    const char* generation;  // "4", "3" or "eapi", as voractl's --sim-generation takes it
    const char* text;        // "fourth generation"
    // The two files the module opens it from, the first that is there.
    const char* paths[2];
    // The two files whose presence makes the module try it. The third
    // generation and the Embedded API are also tried when the fourth
    // generation's file is under /usr/lib64, as the module has always done.
    const char* probed[2];
};

inline constexpr KnownLibrary kBoardLibraries[] = {
    {"libVORA-4.00", "4", "fourth generation",
     {"/usr/lib/libVORA-4.00.so", "/usr/lib64/libVORA-4.00.so"},
     {"/usr/lib/libVORA-4.00.so", "/usr/lib64/libVORA-4.00.so"}},
    {"libVORA-3.02", "3", "third generation",
     {"/usr/lib/libVORA-3.02.so", "/usr/lib64/libVORA-3.02.so"},
     {"/usr/lib/libVORA-3.02.so", "/usr/lib64/libVORA-4.00.so"}},
    {"libEApi", "eapi", "Embedded API",
     {"/usr/lib/libEApi.so", "/usr/lib64/libEApi.so"},
     {"/usr/lib/libEApi.so", "/usr/lib64/libVORA-4.00.so"}},
};

// The library of `generation` ("4", "3", "eapi"); null for none.
const KnownLibrary* LibraryOfGeneration(const std::string& generation);

// "fourth generation", "third generation" or "Embedded API"; a generation
// the table does not know (one a recording names, say) as it is.
std::string GenerationText(const std::string& generation);

// A board library loaded in this process.
struct BoardLibrary {
    std::string path;        // the file the dynamic loader opened
    std::string name;        // "libVORA-4.00", "libVORA-3.02" or "libEApi"
    std::string generation;  // "4", "3" or "eapi"
    // When the library is the board simulator replaying a recording: the
    // recording's library, date and redaction, as a JSON object's text
    // ({"name", "generation", "path", "recorded", "redacted"}); else "".
    std::string replay;
};

// The board library the module is using, from the dynamic loader's list of
// loaded objects. The module tries the libraries in a fixed order and loads
// the next one only when the one before could not be initialised, so of
// those loaded the last in that order is the one in use. A stand-in in
// front of a library (one that names its target through the symbol
// `vora_standin_target`) is seen through: its target is reported.
std::optional<BoardLibrary> LoadedBoardLibrary();

// The stand-in recording the board library in use (the last loaded, as
// above), when one records: whether its recording is full and takes no
// more calls, and its writing of the recording now.
struct Recorder {
    int (*full)();
    void (*save)();
};
std::optional<Recorder> LoadedRecorder();

}  // namespace voradrv::host
