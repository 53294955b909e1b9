// ScriptedProducer: a loaded copy of a scripted producer in a folder of the test, with access to its script.
//
// Each object is a separate producer, since the loader identifies files by their path. The object keeps the file
// loaded, so the journal outlives the library's use of the producer.
#pragma once

#include "producers/scripted/script.h"
#include "tests/support/temporary_folder.h"

#include <initializer_list>
#include <string>

namespace koro::test
{

// The built file of a variant: "scripted_1_5".
std::string BuiltProducer(const std::string& variant);

// Returns whether the process has the file loaded.
bool IsMapped(const std::string& path);

class ScriptedProducer
{
public:
    // `lacking` are exports to be removed from the copy.
    explicit ScriptedProducer(
        const std::string& variant = "scripted_1_5", std::initializer_list<std::string> lacking = {});
    ~ScriptedProducer();
    ScriptedProducer(const ScriptedProducer&) = delete;
    ScriptedProducer& operator=(const ScriptedProducer&) = delete;

    const std::string& Path() const { return path; }
    const TemporaryFolder& Folder() const { return folder; }

    scripted::Script* operator->() const { return script; }
    scripted::Script& operator*() const { return *script; }

    // Releases this object's hold and returns whether the file stays in the process, because another holder has loaded
    // it or because it was pinned there. Do not use the script afterwards.
    bool IsLoadedByOthers();

private:
    void Unload();

    TemporaryFolder folder;
    std::string path;
    void* library = nullptr;
    scripted::Script* script = nullptr;
};

} // namespace koro::test
