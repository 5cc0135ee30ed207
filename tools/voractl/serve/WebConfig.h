// The exporter's web configuration: the file format of the Prometheus
// exporter toolkit (the same file node_exporter takes with --web.config.file),
// for what libmicrohttpd can do: TLS with a certificate and key, a lowest TLS
// version (TLS 1.2 when none is named, with modern ciphers only), and
// basic-auth users with bcrypt password hashes. Anything else in the file is
// refused by name, so that no setting is silently ignored.
#pragma once

#include <map>
#include <string>

namespace voractl {

struct WebConfig {
    std::string certificate;  // PEM texts; both empty: plain HTTP
    std::string key;
    std::string priorities;   // GnuTLS priorities: the versions and ciphers offered
    std::map<std::string, std::string> users;  // user name -> bcrypt hash; empty: no auth

    bool tls() const { return !certificate.empty(); }
};

// Reads FILE; throws ToolError naming the file, the setting and what is
// wrong with it.
WebConfig LoadWebConfig(const std::string& path);
// The same for the text of FILE (its TLS files are still read from disk,
// beside it).
WebConfig ParseWebConfig(const std::string& path, const std::string& text);

}  // namespace voractl
