// The board page's files, built into voractl (page/ in the sources), so that
// the page needs nothing from the network or the file system.
#pragma once

#include <string>

namespace voractl {

struct PageAsset {
    const char* path;  // "/", "/page.js", "/page.css"
    const char* type;  // its Content-Type
    const char* text;  // built in, so that nothing is copied before it is served
};

// The asset served at `path`; null for none.
const PageAsset* FindPageAsset(const std::string& path);

}  // namespace voractl
