#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Writes the records in this folder anew. They come from a second hand, the Python package
mac_alias, so that our readers are not only tested with what we think the formats are.

    PYTHONPATH=WHERE-MAC_ALIAS-IS make.py
"""
import datetime
import pathlib
import struct

from mac_alias import Alias, Bookmark, Data, TargetInfo, URL, VolumeInfo
from mac_alias import alias as a
from mac_alias import bookmark as b

FOLDER = pathlib.Path(__file__).parent
WHEN = datetime.datetime(2012, 3, 4, 5, 6, 7, tzinfo=a.utc)
# "Fotos äöü" as the platform's disks spell it.
UMLAUTS = "Fotos a\u0308o\u0308u\u0308"


def bookmark(names, volume, name, flags):
    return Bookmark([(1, {
        b.kBookmarkPath: names,
        b.kBookmarkCNIDPath: list(range(20, 20 + len(names))),
        b.kBookmarkFileCreationDate: WHEN,
        b.kBookmarkFileProperties: Data(struct.pack("<QQQ", flags, 0x0F, 0)),
        b.kBookmarkVolumePath: volume,
        b.kBookmarkVolumeIsRoot: volume == "/",
        b.kBookmarkVolumeURL: URL("file://" + volume),
        b.kBookmarkVolumeName: name,
        b.kBookmarkVolumeSize: 500000000000,
        b.kBookmarkVolumeCreationDate: WHEN,
        b.kBookmarkCreationOptions: 512,
        b.kBookmarkWasFileReference: True,
        b.kBookmarkUserName: "ann",
        b.kBookmarkUID: 99,
    })]).to_bytes()


def record(kind, name, number, carbon, posix, volume, mount):
    target = TargetInfo(kind, name, 19, number, WHEN, b"\0" * 4, b"\0" * 4, carbon_path=carbon,
                        posix_path=posix, folder_name="above")
    disk = VolumeInfo(volume, WHEN, b"H+", a.ALIAS_EJECTABLE_DISK, 0, b"\0\0", posix_path=mount)
    return Alias(volume=disk, target=target).to_bytes()


def main():
    written = {
        "bookmark-folder": bookmark(["Users", "ann", UMLAUTS], "/", "Macintosh HD", 2),
        "bookmark-file": bookmark(["Photos", "one.jpg"], "/Volumes/Stick", "Stick", 1),
        "bookmark-disk": bookmark([], "/Volumes/Stick", "Stick", 10),
        "record-folder": record(a.ALIAS_KIND_FOLDER, "Photos", 21, "Stick:Photos", "/Photos",
                                "Stick", "/Volumes/Stick"),
        "record-file": record(a.ALIAS_KIND_FILE, "one: two.jpg", 22, "Stick:one/ two.jpg", None,
                              "Stick", None),
        "record-disk": record(a.ALIAS_KIND_FOLDER, "Stick", 2, "Stick:", "/", "Stick",
                              "/Volumes/Stick"),
    }
    for name, content in written.items():
        (FOLDER / name).write_bytes(content)


main()
