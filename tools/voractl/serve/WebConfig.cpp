#include "WebConfig.h"

#include <yaml.h>

#include <cctype>
#include <cstring>
#include <set>
#include <vector>

#include "ToolError.h"
#include "files/Read.h"

namespace voractl {

namespace {

class Document {
public:
    Document(const std::string& path, const std::string& text) : path_(path) {
        yaml_parser_t parser;
        yaml_parser_initialize(&parser);
        yaml_parser_set_input_string(&parser, reinterpret_cast<const unsigned char*>(text.data()),
                                     text.size());
        const bool loaded = yaml_parser_load(&parser, &document_) != 0;
        std::string problem;
        if (!loaded) {
            problem = std::string(parser.problem != nullptr ? parser.problem : "not YAML") +
                      " at line " + std::to_string(parser.problem_mark.line + 1);
        }
        yaml_parser_delete(&parser);
        if (!loaded) {
            throw ToolError("web configuration " + path + ": " + problem);
        }
        loaded_ = true;
    }
    ~Document() {
        if (loaded_) {
            yaml_document_delete(&document_);
        }
    }
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;

    yaml_node_t* root() { return yaml_document_get_root_node(&document_); }
    yaml_node_t* node(int index) { return yaml_document_get_node(&document_, index); }

    [[noreturn]] void fail(const std::string& where, const std::string& what) const {
        throw ToolError("web configuration " + path_ + ": " + where + ": " + what);
    }

    std::string scalar(yaml_node_t* node, const std::string& where) const {
        if (node == nullptr || node->type != YAML_SCALAR_NODE) {
            fail(where, "expected a text");
        }
        return std::string(reinterpret_cast<const char*>(node->data.scalar.value),
                           node->data.scalar.length);
    }

    // The members of a mapping, in order; a mapping's keys are texts.
    std::vector<std::pair<std::string, yaml_node_t*>> members(yaml_node_t* mapping,
                                                              const std::string& where) {
        std::vector<std::pair<std::string, yaml_node_t*>> out;
        if (mapping == nullptr || (mapping->type == YAML_SCALAR_NODE && mapping->data.scalar.length == 0)) {
            return out;  // an empty document or section
        }
        if (mapping->type != YAML_MAPPING_NODE) {
            fail(where, "expected a mapping");
        }
        std::set<std::string> seen;
        for (yaml_node_pair_t* pair = mapping->data.mapping.pairs.start;
             pair < mapping->data.mapping.pairs.top; ++pair) {
            const std::string key = scalar(node(pair->key), where);
            if (!seen.insert(key).second) {
                fail(where + "." + key, "given twice");
            }
            out.emplace_back(key, node(pair->value));
        }
        return out;
    }

private:
    std::string path_;
    yaml_document_t document_{};
    bool loaded_ = false;
};

std::string ReadFile(const std::string& path, const std::string& what,
                     const vorafiles::Limit& limit = vorafiles::kKeyLimit) {
    try {
        return vorafiles::Read(path, limit);
    } catch (const vorafiles::FileError& e) {
        throw ToolError("cannot read " + what + " " + path + ": " + e.what());
    }
}

// A relative file name in the configuration is relative to its directory,
// as the exporter toolkit reads it.
std::string Beside(const std::string& config, const std::string& file) {
    if (file.empty() || file[0] == '/') {
        return file;
    }
    const size_t slash = config.rfind('/');
    return slash == std::string::npos ? file : config.substr(0, slash + 1) + file;
}

// What the exporter toolkit offers by default: TLS 1.2 and 1.3 only, with
// forward-secret key exchange and AEAD ciphers; TLS 1.0 and 1.1, CBC, RC4,
// 3DES and static RSA key exchange are never offered. The server's order
// of preference wins.
const char kTls12[] =
    "SECURE128:-VERS-ALL:+VERS-TLS1.3:+VERS-TLS1.2:-CIPHER-ALL:+AES-128-GCM:+AES-256-GCM:"
    "+CHACHA20-POLY1305:-MAC-ALL:+AEAD:-KX-ALL:+ECDHE-ECDSA:+ECDHE-RSA:%SERVER_PRECEDENCE";
const char kTls13[] =
    "SECURE128:-VERS-ALL:+VERS-TLS1.3:-CIPHER-ALL:+AES-128-GCM:+AES-256-GCM:+CHACHA20-POLY1305:"
    "-MAC-ALL:+AEAD:%SERVER_PRECEDENCE";

// True when `hash` is one bcrypt can have written: "$2a$", "$2b$" or "$2y$",
// a cost from 04 to 31, "$", then 22 characters of salt and 31 of hash in
// bcrypt's base 64. The last character of each encodes fewer than six bits,
// so only some letters can end them; a hash that ends otherwise could never
// match a password, and would refuse every login.
bool IsBcrypt(const std::string& hash) {
    static const std::string kDigits =
        "./ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    if (hash.size() != 60 || hash.compare(0, 2, "$2") != 0 ||
        std::string("aby").find(hash[2]) == std::string::npos || hash[3] != '$' || hash[6] != '$' ||
        !std::isdigit(static_cast<unsigned char>(hash[4])) ||
        !std::isdigit(static_cast<unsigned char>(hash[5]))) {
        return false;
    }
    const int cost = (hash[4] - '0') * 10 + (hash[5] - '0');
    if (cost < 4 || cost > 31) {
        return false;
    }
    for (size_t i = 7; i < hash.size(); ++i) {
        if (kDigits.find(hash[i]) == std::string::npos) {
            return false;
        }
    }
    return kDigits.find(hash[28]) % 16 == 0 && kDigits.find(hash[59]) % 4 == 0;
}

// The files tls_server_config names.
struct TlsFiles {
    std::string cert;
    std::string key;
};

void ReadTlsSetting(Document& doc, const std::string& name, yaml_node_t* value, TlsFiles& files,
                    WebConfig& config) {
    const std::string where = "tls_server_config." + name;
    if (name == "cert_file") {
        files.cert = doc.scalar(value, where);
    } else if (name == "key_file") {
        files.key = doc.scalar(value, where);
    } else if (name == "min_version") {
        const std::string version = doc.scalar(value, where);
        if (version == "TLS12") {
            config.priorities = kTls12;
        } else if (version == "TLS13") {
            config.priorities = kTls13;
        } else {
            doc.fail(where, "TLS12 or TLS13 (older versions are not offered)");
        }
    } else if (name == "client_auth_type") {
        if (doc.scalar(value, where) != "NoClientCert") {
            doc.fail(where, "only NoClientCert: client certificates are not supported");
        }
    } else if (name == "cert" || name == "key") {
        doc.fail(where, "give the PEM in a file, as cert_file and key_file");
    } else {
        doc.fail(where, "not supported by this exporter (it supports cert_file, key_file, "
                        "min_version and client_auth_type NoClientCert)");
    }
}

void ReadTls(Document& doc, yaml_node_t* section, const std::string& path, WebConfig& config) {
    TlsFiles files;
    config.priorities = kTls12;
    for (const auto& [name, value] : doc.members(section, "tls_server_config")) {
        ReadTlsSetting(doc, name, value, files, config);
    }
    if (files.cert.empty() != files.key.empty() ||
        (files.cert.empty() && section != nullptr && section->type == YAML_MAPPING_NODE)) {
        doc.fail("tls_server_config", "needs both cert_file and key_file");
    }
    if (!files.cert.empty()) {
        config.certificate = ReadFile(Beside(path, files.cert), "the TLS certificate");
        config.key = ReadFile(Beside(path, files.key), "the TLS key");
        if (config.certificate.empty() || config.key.empty()) {
            // Never plain HTTP where TLS was asked for.
            doc.fail("tls_server_config",
                     (config.certificate.empty() ? files.cert : files.key) + " is empty");
        }
    }
}

}  // namespace

WebConfig LoadWebConfig(const std::string& path) {
    return ParseWebConfig(path, ReadFile(path, "the web configuration", vorafiles::kConfigLimit));
}

WebConfig ParseWebConfig(const std::string& path, const std::string& text) {
    Document doc(path, text);
    WebConfig config;
    const auto settings = doc.members(doc.root(), "the file");
    if (settings.empty()) {
        throw ToolError("web configuration " + path +
                        ": empty: give tls_server_config or basic_auth_users, or leave out "
                        "--web-config");
    }
    for (const auto& [name, value] : settings) {
        if (name == "tls_server_config") {
            ReadTls(doc, value, path, config);
        } else if (name == "basic_auth_users") {
            for (const auto& [user, hash] : doc.members(value, name)) {
                const std::string text = doc.scalar(hash, name + "." + user);
                if (!IsBcrypt(text)) {
                    doc.fail(name + "." + user,
                             "not a bcrypt hash (as htpasswd -B writes it: $2b$, a cost from 04 "
                             "to 31, $ and 53 characters)");
                }
                config.users[user] = text;
            }
        } else if (name == "http_server_config") {
            doc.fail(name, "not supported: libmicrohttpd serves HTTP/1.1 only and the exporter "
                           "sets its own headers");
        } else {
            doc.fail(name, "unknown setting (tls_server_config and basic_auth_users are read)");
        }
    }
    return config;
}

}  // namespace voractl
