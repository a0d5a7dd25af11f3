// SPDX-License-Identifier: MIT
#include "examples/lighttable/PictureFolder.h"

#include <utility>

namespace lighttable {

PictureFolder::PictureFolder(std::function<void()> changed) : _changed(std::move(changed)) {
}

PictureFolder::~PictureFolder() {
    ++_number;
    _thread.add([this] { _lister.reset(); });
}

void PictureFolder::show(const std::string& folder) {
    const unsigned number = ++_number;
    _content = {folder, FolderState::Listing, {}};
    _thread.add([this, folder, number] {
        _lister.reset();
        if (number != _number)
            return;
        _lister = std::make_unique<PictureLister>(folder, eventsOf(number));
        _lister->list();
    });
    _changed();
}

PictureLister::Events PictureFolder::eventsOf(unsigned number) {
    PictureLister::Events events;
    events.isWanted = [this, number] { return number == _number; };
    events.changed = [this, number] { list(number); };
    events.listed = [this, number](FolderContent content) {
        auto shared = std::make_shared<FolderContent>(std::move(content));
        _thread.tell([this, number, shared] { receive(number, *shared); });
    };
    return events;
}

/// One listing does for all changes until it begins.
void PictureFolder::list(unsigned number) {
    if (_isListDue.exchange(true))
        return;
    _thread.add([this, number] {
        _isListDue = false;
        if (_lister && number == _number)
            _lister->list();
    });
}

void PictureFolder::receive(unsigned number, const FolderContent& content) {
    if (number != _number)
        return;
    _content = content;
    _changed();
}

}  // namespace lighttable
