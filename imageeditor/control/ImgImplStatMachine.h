#pragma once
#include "ImgEditorTypes.h"
#include <QList>
#include <QObject>

// Answers "what comes next" for (current state, event) from the transition
// table. It never acts: the main frame runs the operation, then announces the
// new state through its sigChangeStat signal, connected to slotChangeStat.
class ImgImplStatMachine : public QObject
{
    Q_OBJECT
public:
    ImgImplStatMachine();
    ~ImgImplStatMachine() override;

    ImgEditorState getNextStat(int event) const;
    int getStatAction(int event) const;

    // For tests and diagnostics.
    ImgEditorState currentStat() const { return curStat; }
    int transitionCount() const { return int(transitions.size()); }

private slots:
    void slotChangeStat(ImgEditorState stat);

private:
    const ImgEditorTransition *find(int event) const;

    QList<ImgEditorTransition *> transitions;
    ImgEditorState curStat;
};
