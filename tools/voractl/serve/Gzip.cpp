#include "Gzip.h"

#include <zlib.h>

namespace voractl {

namespace {

// A compressor kept for the thread's life: setting one up costs a quarter
// of a megabyte of tables, more than compressing a scrape.
class Compressor {
public:
    Compressor() {
        // Window bits 15 + 16: a gzip header and trailer around the deflate
        // data.
        ready_ = deflateInit2(&stream_, Z_DEFAULT_COMPRESSION, Z_DEFLATED, 15 + 16, 8,
                              Z_DEFAULT_STRATEGY) == Z_OK;
    }
    ~Compressor() {
        if (ready_) {
            deflateEnd(&stream_);
        }
    }
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;

    std::string gzip(const std::string& text) {
        if (!ready_ || deflateReset(&stream_) != Z_OK) {
            return "";
        }
        std::string out(deflateBound(&stream_, text.size()), '\0');
        stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
        stream_.avail_in = static_cast<uInt>(text.size());
        stream_.next_out = reinterpret_cast<Bytef*>(out.data());
        stream_.avail_out = static_cast<uInt>(out.size());
        const int result = deflate(&stream_, Z_FINISH);
        out.resize(stream_.total_out);
        return result == Z_STREAM_END ? out : "";
    }

private:
    z_stream stream_{};
    bool ready_ = false;
};

}  // namespace

std::string Gzip(const std::string& text) {
    thread_local Compressor compressor;
    return compressor.gzip(text);
}

}  // namespace voractl
