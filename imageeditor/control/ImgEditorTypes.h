#pragma once

// The editor's modes; STAT_END absorbs every pair the transition table lacks.
// A fixed int underneath: a value outside the table is stored and handled
// (it yields the defaults), which an enum without one would not allow.
enum ImgEditorState : int {
    STAT_MAIN = 0,
    STAT_CROP = 1,
    STAT_RESIZE = 2,
    STAT_ADD_ELEMENT = 3,
    STAT_STYLE = 4,
    STAT_SAVE = 5,
    STAT_END = 6,
};

// Input symbols: 0-2 are a service's result (the save screen: Save, Save
// as, Discard), 3-12 the menu choices (undo also comes from the Clear key).
enum ImgEditorEventId {
    EVT_SVC_DONE = 0,
    EVT_SVC_BACK = 1,
    EVT_SVC_DISCARD = 2,
    EVT_ROTATE_LEFT = 3,
    EVT_ROTATE_RIGHT = 4,
    EVT_MIRROR_HOR = 5,
    EVT_MIRROR_VER = 6,
    EVT_CROP = 7,
    EVT_RESIZE = 8,
    EVT_STYLE = 9,
    EVT_ADD_ELEMENT = 10,
    EVT_CANCEL = 11,
    EVT_UNDO = 12,
    EVT_END = 13,
};

// Follow-up work of a transition. 1-5 equal the id of the service started.
enum ImgEditorActionId {
    ACT_NONE = 0,
    ACT_START_CROP = 1,
    ACT_START_RESIZE = 2,
    ACT_START_STYLE = 3,
    ACT_START_ADD_ELEMENT = 4,
    ACT_START_SAVE = 5,
    ACT_SAVE_TO_ORIGINAL = 6,
    ACT_SAVE_AS = 7,
    ACT_DISCARD = 8,
    ACT_INVALID = 9,
};

struct ImgEditorTransition
{
    int curStat;
    int event;
    int nextStat;
    int action;
};

constexpr int IMG_EDITOR_TRANSITION_COUNT = 24;
extern const ImgEditorTransition IMG_EDITOR_TRANSITION_TABLE[IMG_EDITOR_TRANSITION_COUNT];
