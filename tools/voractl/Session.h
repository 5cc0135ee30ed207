// A session with the board: the module loaded through the host loader and
// initialised, its capability document and items, the board library it
// bound, and every call into it made with what it prints caught.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "BoardLibraries.h"
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

private:
    Module module_;
    ModuleOutput output_;
    bool raw_;
    vorajson::JsonPtr document_;
    std::vector<Item> items_;
    std::optional<voradrv::host::BoardLibrary> library_;
    Truth truth_{"", false};
};

}  // namespace voractl
