#pragma once

#include <optional>
#include <string>

namespace velder {

// What an installed Velder knows about its own release, read from "velder-info.json" in its installation
// (<install root>/share/velder/velder-info.json). A build that was never installed has no such file.
struct BuildInfo {
    std::optional<std::string> feedUrl; // "SUFeedURL": where the appcast is
    std::optional<std::string> publicEdKey; // "SUPublicEDKey": base64 of the 32-byte Ed25519 public key
    std::optional<std::string> shortVersion; // "CFBundleShortVersionString"
    // "FeedTrustAnchors": a PEM file of certificate authorities that replaces the system's for the feed and
    // its downloads; relative to the info file, held here as an absolute path.
    std::optional<std::string> feedTrustAnchors;

    // The file's fields; nothing when the file is missing or isn't a JSON object. A field of the wrong
    // type counts as missing.
    static std::optional<BuildInfo> read(const std::string& path);
    // The running installation's file (AppInfo::buildInfoFile), read afresh.
    static std::optional<BuildInfo> installed();
};

} // namespace velder
