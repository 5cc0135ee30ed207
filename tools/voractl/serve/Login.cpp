#include "Login.h"

#include <crypt.h>

#include <cstring>

#include "Printable.h"

namespace voractl {

namespace {

// Only short names and passwords are kept (bcrypt reads 72 bytes of a
// password anyway): a client cannot fill the exporter's memory with them.
const size_t kKeptLength = 256;

bool Keepable(const std::string& user, const std::string& password) {
    return user.size() <= kKeptLength && password.size() <= kKeptLength;
}

std::string Key(const std::string& user, const std::string& password) {
    return user + '\0' + password;  // a name from basic auth holds no NUL
}

}  // namespace

void Login::Kept::add(const std::string& key) {
    if (!keys_.insert(key).second) {
        return;
    }
    order_.push_back(key);
    if (order_.size() > capacity_) {
        keys_.erase(order_.front());
        order_.pop_front();
    }
}

Login::Login(const std::map<std::string, std::string>& users) : users_(users) {
    // The cost is in the hash's digits after "$2b$"; the costliest hash
    // stands in for unknown users, so no user answers faster than they do.
    for (const auto& [user, hash] : users_) {
        if (decoy_.empty() || hash.compare(4, 2, decoy_, 4, 2) > 0) {
            decoy_ = hash;
        }
    }
    if (required()) {
        checks_ = std::make_unique<WorkQueue>(1, 64);
    }
}

Login::Verdict Login::known(const std::string& user, const std::string& password) {
    if (!Keepable(user, password)) {
        return Verdict::Unchecked;
    }
    const std::string key = Key(user, password);
    std::lock_guard<std::mutex> lock(mutex_);
    return allowed_.has(key) ? Verdict::Allowed
                             : refused_.has(key) ? Verdict::Refused : Verdict::Unchecked;
}

bool Login::check(const std::string& user, const std::string& password,
                  std::function<void(bool)> done) {
    return checks_->post([this, user, password, done = std::move(done)] {
        if (stopping_) {
            done(false);
            return;
        }
        bool allowed = false;
        try {
            allowed = verify(user, password);
            if (Keepable(user, password)) {
                std::lock_guard<std::mutex> lock(mutex_);
                (allowed ? allowed_ : refused_).add(Key(user, password));
            }
        } catch (...) {
            // Memory ran out: the verdict is not kept, and only one found
            // already lets the client in.
        }
        done(allowed);
    });
}

bool Login::verify(const std::string& user, const std::string& password) const {
    const auto found = users_.find(user);
    const std::string& hash = found != users_.end() ? found->second : decoy_;
    auto data = std::make_unique<crypt_data>();
    const char* computed = crypt_r(password.c_str(), hash.c_str(), data.get());
    if (computed == nullptr || std::strlen(computed) != hash.size()) {
        return false;
    }
    unsigned char differ = 0;  // every byte compared, whichever differs
    for (size_t i = 0; i < hash.size(); ++i) {
        differ |= static_cast<unsigned char>(computed[i] ^ hash[i]);
    }
    return differ == 0 && found != users_.end();
}

void Login::refused(const std::string& user, const std::string& address) {
    // At most 64 bytes of it, escaped as every board text shown is.
    log_.say("failed login as \"" + Printable(user.substr(0, 64)) + "\"" +
             (user.size() > 64 ? "..." : "") + " from " + address);
}

}  // namespace voractl
