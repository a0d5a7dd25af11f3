// SPDX-License-Identifier: MIT
// Reads any bytes as a property list and expects that every object is released again; and that the
// settings which the quick reader finds in them are the same as those in the objects, and survive
// being written and read.
#include "CoreFoundation/PropertyList/Readers.h"
#include "fuzz/Expect.h"
#include "fuzz/FuzzFolder.h"
#include "ula/src/Core/SettingsPListQuickReader.h"
#include "ula/src/Core/SettingsPListWriter.h"

#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <variant>
#include <vector>

namespace {

using namespace cf::plist;
using tav::ula::FastString;
using tav::ula::SettingsBase;
using Setting = SettingsBase::Setting;

/// A value that is no setting.
struct Other {};

struct Node {
    std::variant<Other, Setting> value = Other();
    bool isArray = false;
    bool isDictionary = false;
    std::vector<Object> members;
    int references = 1;
};

Node* nodeOf(Object object) {
    return static_cast<Node*>(object);
}

/// Counts the references, as Foundation does.
class Nodes : public ObjectFactory {
public:
    ~Nodes() override { expect(_count == 0); }

    Object string(std::string_view text) override {
        return make(Setting(FastString(std::string(text))));
    }
    Object key(std::string_view text) override { return string(text); }
    Object boolean(bool value) override { return make(Setting(value)); }
    Object integer(std::int64_t value) override { return make(Setting(static_cast<int>(value))); }
    Object unsignedInteger(std::uint64_t) override { return make(Other()); }
    Object real(double value) override { return make(Setting(value)); }
    Object shortReal(float) override { return make(Other()); }
    Object date(double) override { return make(Other()); }
    Object data(std::string_view) override { return make(Other()); }
    Object array(std::span<const Object> members) override {
        Node* const node = nodeOf(make(Other()));
        node->isArray = true;
        node->members.assign(members.begin(), members.end());
        return node;
    }
    Object dictionary(std::span<const Object> pairs) override {
        expect(pairs.size() % 2 == 0);
        for (std::size_t i = 0; i < pairs.size(); i += 2)
            expect(std::holds_alternative<Setting>(nodeOf(pairs[i])->value) &&
                   std::get<Setting>(nodeOf(pairs[i])->value).type() ==
                       tav::ula::SETTINGSTYPE_STRING);
        Node* const node = nodeOf(array(pairs));
        node->isArray = false;
        node->isDictionary = true;
        return node;
    }
    Object retain(Object object) override {
        ++nodeOf(object)->references;
        return object;
    }
    void release(Object object) override {
        Node* const node = nodeOf(object);
        expect(node->references > 0);
        if (--node->references > 0)
            return;
        for (const Object member : node->members)
            release(member);
        delete node;
        --_count;
    }

private:
    Object make(std::variant<Other, Setting> value) {
        ++_count;
        return new Node{std::move(value), false, false, {}, 1};
    }

    long _count = 0;
};

const FastString& textOf(Object object) {
    return std::get<Setting>(nodeOf(object)->value).asString();
}

Setting settingOf(Object object) {
    const Node& node = *nodeOf(object);
    if (!node.isArray)
        return std::get<Setting>(node.value);
    std::vector<FastString> texts;
    for (const Object member : node.members)
        texts.push_back(textOf(member));
    return Setting(texts);
}

SettingsBase::GroupMap settingsOf(Object root) {
    SettingsBase::GroupMap settings;
    const std::vector<Object>& groups = nodeOf(root)->members;
    for (std::size_t i = 0; i < groups.size(); i += 2) {
        SettingsBase::KeyMap keys;
        expect(nodeOf(groups[i + 1])->isDictionary);
        const std::vector<Object>& pairs = nodeOf(groups[i + 1])->members;
        for (std::size_t j = 0; j < pairs.size(); j += 2)
            keys.insert_or_assign(textOf(pairs[j]), settingOf(pairs[j + 1]));
        settings.insert_or_assign(textOf(groups[i]), std::move(keys));
    }
    return settings;
}

const std::string& path() {
    static const std::string path = fuzzFolder() + "/input.plist";
    return path;
}

bool readQuickly(std::string_view bytes, SettingsBase::GroupMap& settings) {
    const int file = open(path().c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    expect(file >= 0 &&
           write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()));
    close(file);
    return tav::ula::readSettingsPListQuickly(FastString(path()), settings);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    Nodes nodes;
    std::string error;
    Format format = Format::Xml;
    const Object root = readPropertyList(bytes, nodes, format, error);
    expect(root != nullptr || !error.empty());
    SettingsBase::GroupMap settings;
    if (readQuickly(bytes, settings)) {
        expect(root != nullptr && nodeOf(root)->isDictionary && settingsOf(root) == settings);
        std::string text;
        tav::xml::XmlOutput output([&](std::string_view piece) { text += piece; });
        tav::ula::writeSettingsPList(settings, output);
        output.flush();
        SettingsBase::GroupMap again;
        expect(readQuickly(text, again) && again == settings);
    }
    if (root != nullptr)
        nodes.release(root);
    return 0;
}
