#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""check-aar.py FILE: proves that an imageblend.aar is whole. Prints each fault, exits 1 if any."""
import io
import json
import os
import re
import struct
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as xml
import zipfile

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
HEADER = os.path.join(ROOT, "include", "imageblend.h")
LICENCE = os.path.join(ROOT, "LICENSE")
MACHINES = {"arm64-v8a": "AArch64", "x86_64": "Advanced Micro Devices X86-64"}
EXPORTS = {
    "libimageblend.so": {"vorn_get_icon_size", "vorn_create_rgb_icon", "vorn_verify_icon_pos",
                         "vorn_imageBlending"},
    "libimageblend_jni.so": {"JNI_OnLoad"},
}
# What Android itself provides at API 24, and no C++ library.
NEEDED = {
    "libimageblend.so": {"libc.so", "libm.so", "libdl.so", "liblog.so"},
    "libimageblend_jni.so": {"libc.so", "libm.so", "libdl.so", "libimageblend.so"},
}
MODULE = "prefab/modules/imageblend/"
CLASS = "org/imageblend/ImageBlend.class"
JAVA_8 = 52
PAGE_BYTES = 16384
API_LEVEL = "24"
MANIFEST_SDK = "{http://schemas.android.com/apk/res/android}minSdkVersion"


def expected_names():
    names = {"AndroidManifest.xml", "LICENSE", "R.txt", "classes.jar", "proguard.txt", "prefab/prefab.json",
             MODULE + "module.json", MODULE + "include/imageblend.h"}
    for abi in MACHINES:
        names |= {f"jni/{abi}/{library}" for library in EXPORTS}
        names |= {f"{MODULE}libs/android.{abi}/{name}" for name in ("abi.json", "libimageblend.so")}
    return names


def header_version():
    with open(HEADER, encoding="utf-8") as header:
        return ".".join(re.findall(r"#define IMAGEBLEND_VERSION_\w+ (\d+)", header.read()))


def readelf(path, *options):
    command = ["readelf", "--wide", *options, path]
    english = {**os.environ, "LC_ALL": "C"}
    return subprocess.run(command, check=True, capture_output=True, text=True, env=english).stdout


def library_faults(path, abi, library):
    """What differs from a hardened library of the ABI with nothing exported or needed but ours."""
    machine = re.search(r"Machine: +(.+)", readelf(path, "--file-header")).group(1)
    if machine != MACHINES[abi]:
        yield f"is built for {machine}, must be for {MACHINES[abi]}"
    segments = readelf(path, "--segments")
    alignment = min(int(field, 16) for field in re.findall(r"^ +LOAD .* (0x\w+)$", segments, re.M))
    if alignment < PAGE_BYTES:
        yield f"has segments aligned to {alignment}, must be {PAGE_BYTES}"
    if "GNU_RELRO" not in segments:
        yield "has no GNU_RELRO segment"
    dynamic = readelf(path, "--dynamic")
    if "BIND_NOW" not in dynamic:
        yield "has no BIND_NOW flag"
    soname = re.findall(r"\(SONAME\).*\[(.+)\]", dynamic)
    if soname != [library]:
        yield f"has the soname {soname}, must be {library}"
    needed = set(re.findall(r"\(NEEDED\).*\[(.+)\]", dynamic))
    foreign = needed - NEEDED[library]
    if foreign:
        yield f"needs {sorted(foreign)}, may need only {sorted(NEEDED[library])}"
    if library == "libimageblend.so" and "liblog.so" not in needed:
        yield "does not need liblog.so, so its log would not be Android's"
    symbols = re.findall(r" (?:FUNC|OBJECT) +(?:GLOBAL|WEAK) +DEFAULT +\d+ (\w+)",
                         readelf(path, "--dyn-syms"))
    if set(symbols) != EXPORTS[library]:
        yield f"exports {sorted(symbols)}, must export {sorted(EXPORTS[library])}"


def libraries_faults(aar, folder):
    for abi in MACHINES:
        for library in EXPORTS:
            name = f"jni/{abi}/{library}"
            for fault in library_faults(aar.extract(name, folder), abi, library):
                yield f"{name} {fault}"
        prefab = f"{MODULE}libs/android.{abi}/libimageblend.so"
        if aar.read(prefab) != aar.read(f"jni/{abi}/libimageblend.so"):
            yield f"{prefab} differs from the one in jni/{abi}"


def field_faults(aar, name, expected):
    """Compares fields of a JSON file."""
    fields = json.loads(aar.read(name))
    for field, value in expected.items():
        if fields.get(field) != value:
            yield f"{name} has {field} {fields.get(field)!r}, must be {value!r}"


def prefab_faults(aar):
    yield from field_faults(aar, "prefab/prefab.json", {
        "schema_version": 2, "name": "imageblend", "version": header_version(), "dependencies": []})
    yield from field_faults(aar, MODULE + "module.json", {"library_name": "libimageblend"})
    for abi in MACHINES:
        name = f"{MODULE}libs/android.{abi}/abi.json"
        yield from field_faults(aar, name, {"abi": abi, "api": int(API_LEVEL), "stl": "none",
                                            "static": False})
        if not isinstance(json.loads(aar.read(name)).get("ndk"), int):
            yield f"{name} has no number for ndk"
    for name, source in ((MODULE + "include/imageblend.h", HEADER), ("LICENSE", LICENCE)):
        with open(source, "rb") as original:
            if aar.read(name) != original.read():
                yield f"{name} differs from {os.path.relpath(source, ROOT)}"


def java_faults(aar):
    manifest = xml.fromstring(aar.read("AndroidManifest.xml"))
    if manifest.get("package") != "org.imageblend":
        yield f"AndroidManifest.xml has package {manifest.get('package')}, must be org.imageblend"
    sdk = [use.get(MANIFEST_SDK) for use in manifest.findall("uses-sdk")]
    if sdk != [API_LEVEL]:
        yield f"AndroidManifest.xml has minSdkVersion {sdk}, must be {API_LEVEL}"
    rules = aar.read("proguard.txt").decode()
    if not re.search(r"-keep\S* class org\.imageblend\.ImageBlend \{\s*native <methods>;", rules):
        yield "proguard.txt does not keep the native methods of org.imageblend.ImageBlend"
    with zipfile.ZipFile(io.BytesIO(aar.read("classes.jar"))) as classes:
        names = [name for name in classes.namelist() if not name.endswith("/")]
        if names != [CLASS]:
            yield f"classes.jar holds {names}, must hold {CLASS}"
            return
        magic, _, version = struct.unpack(">IHH", classes.read(CLASS)[:8])
        if magic != 0xCAFEBABE or version > JAVA_8:
            yield f"{CLASS} has class file version {version}, must be at most {JAVA_8}"


def faults_of(path):
    with zipfile.ZipFile(path) as aar, tempfile.TemporaryDirectory() as folder:
        names = [name for name in aar.namelist() if not name.endswith("/")]
        missing = sorted(expected_names() - set(names))
        excess = sorted(set(names) - expected_names())
        if missing or excess or len(names) != len(set(names)):
            return [f"{name} is missing" for name in missing] + \
                   [f"{name} does not belong here" for name in excess] + \
                   (["an entry stands twice"] if len(names) != len(set(names)) else [])
        return [*libraries_faults(aar, folder), *prefab_faults(aar), *java_faults(aar)]


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: check-aar.py FILE")
    found = faults_of(sys.argv[1])
    for fault in found:
        print(f"{sys.argv[1]}: {fault}", file=sys.stderr)
    sys.exit(1 if found else 0)


main()
