#include "ImgImplStatMachine.h"

ImgImplStatMachine::ImgImplStatMachine()
    : QObject(nullptr), curStat(STAT_MAIN)
{
    for (const ImgEditorTransition &t : IMG_EDITOR_TRANSITION_TABLE) {
        if (t.curStat == STAT_END)
            break;
        transitions.append(new ImgEditorTransition(t));
    }
}

ImgImplStatMachine::~ImgImplStatMachine()
{
    qDeleteAll(transitions);
    transitions.clear();
}

const ImgEditorTransition *ImgImplStatMachine::find(int event) const
{
    for (const ImgEditorTransition *t : transitions) {
        if (t->curStat == curStat && t->event == event)
            return t;
    }
    return nullptr;
}

ImgEditorState ImgImplStatMachine::getNextStat(int event) const
{
    const ImgEditorTransition *t = find(event);
    return t ? ImgEditorState(t->nextStat) : STAT_END;
}

int ImgImplStatMachine::getStatAction(int event) const
{
    const ImgEditorTransition *t = find(event);
    return t ? t->action : ACT_INVALID;
}

void ImgImplStatMachine::slotChangeStat(ImgEditorState stat)
{
    // Stored unchecked: a value outside the table makes every later lookup
    // fall back to the defaults.
    curStat = stat;
}
