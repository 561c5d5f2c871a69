#include "platform/linux/LibsecretStore.h"

#include <condition_variable>
#include <memory>
#include <thread>

#include <libsecret/secret.h>

namespace quorvane {

namespace {

using Steady = std::chrono::steady_clock;

constexpr auto muteTime = std::chrono::seconds(30);
constexpr int muteStatus = -1;
constexpr int unknownStatus = -2;

const SecretSchema schema = {
    "com.quorvane.credentials",
    SECRET_SCHEMA_NONE,
    {{"key", SECRET_SCHEMA_ATTRIBUTE_STRING}, {"application", SECRET_SCHEMA_ATTRIBUTE_STRING}},
    0,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr,
    nullptr};

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};

} // namespace

/// One request to the keyring: its attributes, its time limit and its outcome.
class LibsecretStore::Call {
  public:
    Call(LibsecretStore& store, const QString& key)
        : store_(store),
          key_(key.toUtf8()),
          cancellable_(g_cancellable_new()),
          limit_([this](std::stop_token stop) { cancelWhenLate(stop); }) {}

    ~Call() {
        limit_.request_stop();
        limit_.join();
        if (g_cancellable_is_cancelled(cancellable()))
            *store_.muteUntil_.lock() = Steady::now() + muteTime;
        g_clear_error(&error);
    }

    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    const char* key() const { return key_.constData(); }
    GCancellable* cancellable() const { return cancellable_.get(); }

    GError* error = nullptr;

  private:
    void cancelWhenLate(const std::stop_token& stop) {
        std::mutex mutex;
        std::condition_variable_any wake;
        std::unique_lock lock(mutex);
        wake.wait_for(lock, stop, store_.patience_, [] { return false; });
        if (!stop.stop_requested())
            g_cancellable_cancel(cancellable());
    }

    LibsecretStore& store_;
    const QByteArray key_;
    const std::unique_ptr<GCancellable, Unref> cancellable_;
    std::jthread limit_;
};

LibsecretStore::LibsecretStore(std::chrono::milliseconds patience) : patience_(patience) {}

int LibsecretStore::write(const QString& key, const QString& value) {
    if (isMute())
        return muteStatus;
    Call call(*this, key);
    const QByteArray label = "Quorvane: " + key.toUtf8();
    if (secret_password_store_sync(&schema, SECRET_COLLECTION_DEFAULT, label.constData(),
                                   value.toUtf8().constData(), call.cancellable(), &call.error,
                                   "key", call.key(), "application", "Quorvane", nullptr))
        return 0;
    return call.error != nullptr && call.error->code != 0 ? call.error->code : unknownStatus;
}

std::optional<QString> LibsecretStore::read(const QString& key) {
    if (isMute())
        return std::nullopt;
    Call call(*this, key);
    GList* items = secret_password_search_sync(&schema, SECRET_SEARCH_LOAD_SECRETS,
                                               call.cancellable(), &call.error, "key", call.key(),
                                               "application", "Quorvane", nullptr);
    std::optional<QString> found;
    if (items != nullptr) {
        const std::unique_ptr<SecretValue, decltype(&secret_value_unref)> value(
            secret_retrievable_retrieve_secret_sync(SECRET_RETRIEVABLE(items->data),
                                                    call.cancellable(), &call.error),
            &secret_value_unref);
        if (value)
            found = QString::fromUtf8(secret_value_get_text(value.get()));
    }
    g_list_free_full(items, g_object_unref);
    return found;
}

void LibsecretStore::remove(const QString& key) {
    if (isMute())
        return;
    Call call(*this, key);
    secret_password_clear_sync(&schema, call.cancellable(), &call.error, "key", call.key(),
                               "application", "Quorvane", nullptr);
}

bool LibsecretStore::isMute() {
    return Steady::now() < *muteUntil_.lock();
}

} // namespace quorvane
