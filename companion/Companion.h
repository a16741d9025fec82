#pragma once

#include "library/LibraryEditor.h"
#include "platform/PreferencesSuite.h"
#include "preferences/Preferences.h"

#include <memory>
#include <optional>
#include <vector>

/// Why a command cannot go on, for people. Thrown by what commands use, caught where they are
/// chosen.
struct CommandError {
    QString what;
    QString why;
};

/// The settings and the library, opened when a command first asks for them. What cannot be opened
/// or read throws a `CommandError`.
class Companion {
public:
    Preferences& preferences();
    LibraryEditor& library();
    std::vector<LibraryEditor::Entry> entries();

    /// Waits until what was set has been written, for as long as people wait for a command.
    void storePreferences();

    /// Tells the helper that the library has changed.
    static void announceLibrary();

private:
    std::unique_ptr<PreferencesSuite> m_suite;
    std::optional<Preferences> m_preferences;
    std::optional<LibraryEditor> m_library;
};
