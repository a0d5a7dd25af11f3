// SPDX-License-Identifier: MIT
#include "Security/Keychain/ServiceStore.h"

#include "Security/Keychain/AttributeText.h"
#include "Security/Keychain/ItemDigest.h"
#include "Security/Keychain/PromptedCall.h"
#include "Security/Keychain/ServiceStatus.h"
#include "Security/SecBase.h"

#include <utility>

namespace security {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kFreshness(5);

constexpr char kDefaultAlias[] = "default";
constexpr char kDefaultCollection[] = "/org/freedesktop/secrets/aliases/default";
constexpr char kCollectionLabel[] = "org.freedesktop.Secret.Collection.Label";
constexpr char kItemLabel[] = "org.freedesktop.Secret.Item.Label";
constexpr char kItemAttributes[] = "org.freedesktop.Secret.Item.Attributes";
constexpr char kSchemaAttribute[] = "xdg:schema";
constexpr char kDigest[] = "item";
constexpr char kService[] = "service";
constexpr char kAccount[] = "account";

const SecretSchema kSchema = {"ula.GenericPassword",
                              SECRET_SCHEMA_NONE,
                              {{kDigest, SECRET_SCHEMA_ATTRIBUTE_STRING},
                               {kService, SECRET_SCHEMA_ATTRIBUTE_STRING},
                               {kAccount, SECRET_SCHEMA_ATTRIBUTE_STRING},
                               {nullptr, SECRET_SCHEMA_ATTRIBUTE_STRING}},
                              0,
                              nullptr,
                              nullptr,
                              nullptr,
                              nullptr,
                              nullptr,
                              nullptr,
                              nullptr};

// Receives the error of a call.
class Failure {
public:
    ~Failure() { g_clear_error(&_error); }
    GError** receive() {
        g_clear_error(&_error);
        return &_error;
    }
    const GError* get() const { return _error; }
    OSStatus status() const { return statusOf(_error); }

private:
    GError* _error = nullptr;
};

// What is looked for may have a secret for an account: it does not go over the bus.
GVariant* searchedAttributes(const ItemKey& name) {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a{ss}"));
    g_variant_builder_add(&builder, "{ss}", kSchemaAttribute, kSchema.name);
    g_variant_builder_add(&builder, "{ss}", kDigest, itemDigest(name).c_str());
    return g_variant_builder_end(&builder);
}

GVariant* storedAttributes(const ItemKey& name) {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a{ss}"));
    g_variant_builder_add(&builder, "{ss}", kSchemaAttribute, kSchema.name);
    g_variant_builder_add(&builder, "{ss}", kDigest, itemDigest(name).c_str());
    g_variant_builder_add(&builder, "{ss}", kService, attributeText(name.service).c_str());
    g_variant_builder_add(&builder, "{ss}", kAccount, attributeText(name.account).c_str());
    return g_variant_builder_end(&builder);
}

Owned<GHashTable> propertyTable() {
    const auto release = [](gpointer value) { g_variant_unref(static_cast<GVariant*>(value)); };
    return Owned<GHashTable>(g_hash_table_new_full(g_str_hash, g_str_equal, nullptr, release));
}

void setProperty(GHashTable* table, const char* key, GVariant* value) {
    g_hash_table_insert(table, const_cast<char*>(key), g_variant_ref_sink(value));
}

// What programs that manage passwords show.
std::string labelOf(const ItemKey& name) {
    std::string label(name.service);
    if (!name.account.empty())
        label.append(" (").append(name.account).append(")");
    return attributeText(label);
}

// Of a call that asks the user and came back without what was wanted.
OSStatus refusal(const PromptedCall& call, const Failure& failure) {
    if (call.isAbandoned())
        return errSecNotAvailable;
    return failure.get() != nullptr ? failure.status() : errSecUserCanceled;
}

// Prompts. Fails: errSecUserCanceled when the user has dismissed it.
OSStatus unlock(SecretService* service, const char* path) {
    Failure failure;
    PromptedCall call(service);
    const gchar* paths[] = {path, nullptr};
    secret_service_unlock_dbus_paths(service, paths, call.cancellable(), &PromptedCall::receive,
                                     &call);
    const gint count =
        secret_service_unlock_dbus_paths_finish(service, call.wait(), nullptr, failure.receive());
    return count > 0 ? OSStatus(errSecSuccess) : refusal(call, failure);
}

// Prompts for the password of the new collection.
OSStatus makeDefaultCollection(SecretService* service) {
    Failure failure;
    PromptedCall call(service);
    const Owned<GHashTable> properties = propertyTable();
    setProperty(properties.get(), kCollectionLabel, g_variant_new_string("Login"));
    secret_service_create_collection_dbus_path(service, properties.get(), kDefaultAlias,
                                               SECRET_COLLECTION_CREATE_NONE, call.cancellable(),
                                               &PromptedCall::receive, &call);
    const Owned<gchar> path(
        secret_service_create_collection_dbus_path_finish(service, call.wait(), failure.receive()));
    // A dismissed prompt makes the root.
    const bool isMade = path != nullptr && std::string_view(path.get()) != "/";
    return isMade ? OSStatus(errSecSuccess) : refusal(call, failure);
}

// Prompts where the service wants to.
OSStatus deleteItem(SecretService* service, const char* path) {
    Failure failure;
    PromptedCall call(service);
    secret_service_delete_item_dbus_path(service, path, call.cancellable(), &PromptedCall::receive,
                                         &call);
    const bool isDone = secret_service_delete_item_dbus_path_finish(service, call.wait(),
                                                                    failure.receive()) != FALSE;
    return isDone ? OSStatus(errSecSuccess) : refusal(call, failure);
}

bool isLocked(const GError* error) {
    return g_error_matches(error, SECRET_ERROR, SECRET_ERROR_IS_LOCKED) != FALSE;
}

// There may be a name for a collection that nobody has made.
bool isMissing(const GError* error) {
    return g_error_matches(error, SECRET_ERROR, SECRET_ERROR_NO_SUCH_OBJECT) ||
           g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_UNKNOWN_METHOD) ||
           g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_UNKNOWN_OBJECT);
}

void createItem(SecretService* service, const ItemKey& name, std::string_view secret,
                Failure& failure) {
    const Owned<GHashTable> properties = propertyTable();
    setProperty(properties.get(), kItemLabel, g_variant_new_string(labelOf(name).c_str()));
    setProperty(properties.get(), kItemAttributes, storedAttributes(name));
    const Owned<SecretValue> value(secret_value_new(
        secret.data(), static_cast<gssize>(secret.size()), "application/octet-stream"));
    const Owned<gchar> path(secret_service_create_item_dbus_path_sync(
        service, kDefaultCollection, properties.get(), value.get(), SECRET_ITEM_CREATE_NONE,
        nullptr, failure.receive()));
}

OSStatus addItem(SecretService* service, const ItemKey& name, std::string_view secret) {
    Failure failure;
    createItem(service, name, secret, failure);
    if (!isLocked(failure.get()) && !isMissing(failure.get()))
        return failure.status();
    const OSStatus status = isMissing(failure.get()) ? makeDefaultCollection(service)
                                                     : unlock(service, kDefaultCollection);
    if (status != errSecSuccess)
        return status;
    createItem(service, name, secret, failure);
    return failure.status();
}

std::string valueOf(GHashTable* attributes, const char* key) {
    const auto* const text = static_cast<const char*>(g_hash_table_lookup(attributes, key));
    return text != nullptr ? nameOfAttribute(text) : "";
}

}  // namespace

OSStatus ServiceStore::attempt(const std::function<OSStatus(SecretService*)>& work) {
    // Before the lock, which a thread of the parent may have held.
    if (_connection.isOfParent())
        return errSecNotAvailable;
    const std::lock_guard lock(_mutex);
    SecretService* service = nullptr;
    OSStatus status = _connection.connect(service);
    if (status != errSecSuccess)
        return status;
    status = work(service);
    if (status != errSecNotAvailable)
        return status;
    _connection.disconnect();
    status = _connection.connect(service);
    return status == errSecSuccess ? work(service) : status;
}

// Called directly: libsecret's own call makes a main loop for it and takes longer.
OSStatus ServiceStore::search(SecretService* service, const ItemKey& name, Found& found) {
    Failure failure;
    const Owned<GVariant> answer(g_dbus_proxy_call_sync(
        G_DBUS_PROXY(service), "SearchItems", g_variant_new("(@a{ss})", searchedAttributes(name)),
        G_DBUS_CALL_FLAGS_NONE, -1, nullptr, failure.receive()));
    if (answer == nullptr)
        return failure.status();
    gchar** unlocked = nullptr;
    gchar** locked = nullptr;
    g_variant_get(answer.get(), "(^ao^ao)", &unlocked, &locked);
    const Owned<gchar*> ownedUnlocked(unlocked);
    const Owned<gchar*> ownedLocked(locked);
    const bool isUnlocked = unlocked != nullptr && unlocked[0] != nullptr;
    if (!isUnlocked && (locked == nullptr || locked[0] == nullptr))
        return errSecItemNotFound;
    found = {isUnlocked ? unlocked[0] : locked[0], !isUnlocked};
    return errSecSuccess;
}

OSStatus ServiceStore::searchUnlocked(SecretService* service, const ItemKey& name, Found& found) {
    const OSStatus status = search(service, name, found);
    if (status != errSecSuccess || !found.isLocked)
        return status;
    return unlock(service, found.path.c_str());
}

OSStatus ServiceStore::find(const ItemKey& name) {
    return attempt([&](SecretService* service) {
        Found found;
        const OSStatus status = search(service, name, found);
        if (status == errSecSuccess && !found.isLocked)
            _justFound = {itemDigest(name), found.path, std::this_thread::get_id(), Clock::now()};
        return status;
    });
}

std::string ServiceStore::takeJustFound(const ItemKey& name) {
    const JustFound found = std::exchange(_justFound, {});
    const bool isFresh = found.thread == std::this_thread::get_id() &&
                         Clock::now() - found.time < kFreshness && found.digest == itemDigest(name);
    return isFresh ? found.path : "";
}

OSStatus ServiceStore::readAt(SecretService* service, const std::string& path,
                              SecretBytes& secret) {
    Failure failure;
    const Owned<SecretValue> value(secret_service_get_secret_for_dbus_path_sync(
        service, path.c_str(), nullptr, failure.receive()));
    if (value == nullptr)
        return failure.get() != nullptr ? failure.status() : errSecItemNotFound;
    gsize length = 0;
    const gchar* const bytes = secret_value_get(value.get(), &length);
    secret = SecretBytes(std::string_view(bytes, length));
    return errSecSuccess;
}

OSStatus ServiceStore::readFound(SecretService* service, const ItemKey& name, SecretBytes& secret) {
    const std::string path = takeJustFound(name);
    if (!path.empty() && readAt(service, path, secret) == errSecSuccess)
        return errSecSuccess;
    Found found;
    const OSStatus status = searchUnlocked(service, name, found);
    return status == errSecSuccess ? readAt(service, found.path, secret) : status;
}

OSStatus ServiceStore::read(const ItemKey& name, SecretBytes& secret) {
    return attempt([&](SecretService* service) { return readFound(service, name, secret); });
}

OSStatus ServiceStore::add(const ItemKey& name, std::string_view secret) {
    return attempt([&](SecretService* service) {
        _justFound = {};
        Found found;
        const OSStatus status = search(service, name, found);
        if (status != errSecItemNotFound)
            return status == errSecSuccess ? OSStatus(errSecDuplicateItem) : status;
        return addItem(service, name, secret);
    });
}

OSStatus ServiceStore::remove(const ItemKey& name) {
    return attempt([&](SecretService* service) {
        _justFound = {};
        Found found;
        const OSStatus status = searchUnlocked(service, name, found);
        return status == errSecSuccess ? deleteItem(service, found.path.c_str()) : status;
    });
}

OSStatus ServiceStore::list(std::vector<ItemName>& names) {
    return attempt([&](SecretService* service) {
        Failure failure;
        const Owned<GHashTable> any(g_hash_table_new(g_str_hash, g_str_equal));
        GList* const items = secret_service_search_sync(
            service, &kSchema, any.get(), SECRET_SEARCH_ALL, nullptr, failure.receive());
        for (GList* item = items; item != nullptr; item = item->next) {
            const Owned<GHashTable> attributes(secret_item_get_attributes(SECRET_ITEM(item->data)));
            names.push_back(
                {valueOf(attributes.get(), kService), valueOf(attributes.get(), kAccount)});
        }
        g_list_free_full(items, g_object_unref);
        return failure.status();
    });
}

OSStatus ServiceStore::examine(bool& isLocked) {
    isLocked = false;
    return attempt([&](SecretService* service) {
        Failure failure;
        const Owned<SecretCollection> collection(secret_collection_for_alias_sync(
            service, kDefaultAlias, SECRET_COLLECTION_NONE, nullptr, failure.receive()));
        isLocked = collection == nullptr || secret_collection_get_locked(collection.get());
        return failure.status();
    });
}

std::string ServiceStore::path() const {
    return kDefaultCollection;
}

}  // namespace security
