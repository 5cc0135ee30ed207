#include "Libraries.h"

#define VORADRV_TABLES_ONLY
#include "binding/EApiLibrary.h"
#include "binding/Vora3Library.h"
#include "binding/Vora4Library.h"

namespace vorarec {

namespace {

#define VORAREC_SIGNATURE(result, name, parameters, arguments) Signature(#name, #parameters, #result),

const std::vector<Library>& All() {
    static const std::vector<Library> libraries = {
        {"libVORA-4.00", "4", 0, {VORA4_LIBRARY(VORAREC_SIGNATURE, VORAREC_SIGNATURE)}},
        {"libVORA-3.02", "3", 1, {VORA3_LIBRARY(VORAREC_SIGNATURE, VORAREC_SIGNATURE)}},
        {"libEApi", "eapi", 0, {EAPI_LIBRARY(VORAREC_SIGNATURE, VORAREC_SIGNATURE)}},
    };
    return libraries;
}

}  // namespace

const Signature* Library::find(const std::string& function) const {
    for (const Signature& signature : functions) {
        if (signature.function == function) {
            return &signature;
        }
    }
    return nullptr;
}

const Library* LibraryOf(const std::string& generation) {
    for (const Library& library : All()) {
        if (generation == library.generation) {
            return &library;
        }
    }
    return nullptr;
}

}  // namespace vorarec
