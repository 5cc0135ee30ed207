// A session with the board: the module loaded through the host loader and
// initialised, its capability document and items, the board library it
// bound, and every call into it made with what it prints caught.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "BoardLibraries.h"
#include "CallThread.h"
#include "Items.h"
#include "Module.h"
#include "ModuleOutput.h"
#include "Truth.h"
#include "json/JsonPtr.h"

namespace voractl {

struct Reading;

class Session {
public:
    // Loads the module at `modulePath` (empty: voractl's default one).
    // Throws ToolError when it cannot be loaded.
    Session(const std::string& modulePath, bool quiet, bool raw);
    // Uninitialises the module when it is initialised.
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    // Initialises the module and reads its document; throws ToolError with
    // what to do when it fails.
    void open();
    // The same; the module's status instead of an error (0 when it came up).
    uint32_t tryOpen();
    void close();
    bool opened() const { return module_.initialized(); }

    const std::string& modulePath() const { return module_.path(); }
    const json_t* document() const { return document_.get(); }
    const std::vector<Item>& items() const { return items_; }
    const std::optional<voradrv::host::BoardLibrary>& library() const { return library_; }
    const Truth& truth() const { return truth_; }

    // One read of `item` with the JSON type of its element, its value true.
    Reading read(const Item& item);
    std::vector<Reading> readAll(const std::vector<Item>& items);
    // Writes the JSON value `value` (the module's own sense) to `item`.
    uint32_t write(const Item& item, json_t* value);

    // With a timeout (--timeout, seconds), open() and each readAll() call
    // the module on a thread of their own and wait for it that long: the
    // items not read by then are unreadable (`unanswered`), the module
    // failed to come up, and the session is abandoned.
    void setTimeout(double seconds) { timeout_ = seconds; }
    // Gives up on a call under way on another thread, which cannot be
    // interrupted: the module is left in it, never called again nor
    // uninitialised, and the process must end with Leave().
    void abandon();
    bool abandoned() const { return abandoned_; }

private:
    struct Progress;
    std::vector<Reading> readEach(const std::vector<Item>& items);
    std::vector<Reading> readWithin(const std::vector<Item>& items);

    Module module_;
    ModuleOutput output_;
    bool raw_;
    vorajson::JsonPtr document_;
    std::vector<Item> items_;
    std::optional<voradrv::host::BoardLibrary> library_;
    Truth truth_{"", false};
    double timeout_ = 0;  // seconds; 0: none
    bool abandoned_ = false;
    std::unique_ptr<CallThread> calls_;  // with a timeout
};

}  // namespace voractl
