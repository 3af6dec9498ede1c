#pragma once
// What the header, the browser and the sheets share beyond the controls: the user's settings and
// favourites, the comparison with the loaded sounds, and news about the program as a whole.

#include "editor/Comparison.h"
#include "editor/EditorContext.h"
#include "editor/Favourites.h"
#include "editor/Settings.h"

#include <algorithm>
#include <functional>
#include <vector>

namespace tolm {

// Hears that another program is current, that it was edited, or that the preset list is new.
class ProgramListener {
public:
    virtual ~ProgramListener() = default;
    virtual void programChanged() = 0;
};

class EditorShell {
public:
    explicit EditorShell(EditorContext& controls)
        : context(controls),
          comparison(controls.port(), controls.history()),
          favourites(controls.port()),
          settings(loadSettings(controls.port()))
    {
    }

    EditorContext& context;
    Comparison comparison;
    Favourites favourites;
    Settings settings;
    // Makes changed settings take effect and keeps them.
    std::function<void()> applySettings;

    // Until `forget`.
    void listen(ProgramListener& listener) { listeners_.push_back(&listener); }
    void forget(ProgramListener& listener) { std::erase(listeners_, &listener); }
    void tellProgram()
    {
        for (ProgramListener* listener : listeners_)
            listener->programChanged();
    }
    // After a command that changed more than one control: everything is read again.
    void tellAll()
    {
        context.tellAllValues();
        tellProgram();
    }

private:
    std::vector<ProgramListener*> listeners_;
};

} // namespace tolm
