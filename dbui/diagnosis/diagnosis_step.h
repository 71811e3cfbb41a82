#pragma once

#include <functional>
#include <string>

namespace dbui {
/// One layer of a connection, as it was found. The texts are UTF-8 without a newline at their end,
/// and hold no password.
struct DiagnosisStep
{
    enum class Layer {
        Record,
        // A server:
        HostName,
        Port,
        Login,
        Server,
        Encryption,
        // An SQLite file:
        Folder,
        File,
        // Either:
        Database,
        JournalMode, // of an SQLite file
        Schema,
        Reading,
        Writing
    };
    enum class Outcome {
        Ok,
        Warning, ///< the connection can be used, within limits
        Failed,
        Skipped ///< not checked, because an earlier layer failed
    };

    Layer layer = Layer::Record;
    Outcome outcome = Outcome::Ok;
    std::string detail; ///< what was found
    std::string advice; ///< what to do about it; empty when there is nothing to do
};

/// The layer and the outcome in English: "host name", "ok".
const char* name_of(DiagnosisStep::Layer layer);
const char* name_of(DiagnosisStep::Outcome outcome);

/// Hears of each step when it is done. False ends the diagnosis: the rest is skipped.
using DiagnosisListener = std::function<bool(const DiagnosisStep& step)>;
} // namespace dbui
