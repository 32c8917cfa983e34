<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="sw">
<context>
    <name>HostViewer</name>
    <message>
        <source>Edit</source>
        <translation>Hariri</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>Ondoka</translation>
    </message>
    <message>
        <source>This picture can not be shown.</source>
        <translation>Picha hii haiwezi kuonyeshwa.</translation>
    </message>
</context>
<context>
    <name>ImgImplMainFrame</name>
    <message>
        <source>TXT_RID_OPTION_EDIT</source>
        <comment>Edit</comment>
        <translation>Hariri</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_OPTIONS</source>
        <comment>Options</comment>
        <translation>Chaguo</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_NO_WORKING_STORAGE</source>
        <comment>The editor&apos;s working storage can not be used, so the picture can not be edited.</comment>
        <translation>Hifadhi ya kazi ya kihariri haiwezi kutumika, kwa hivyo picha haiwezi kuhaririwa.</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_CANNOT_OPEN_IMAGE</source>
        <comment>The picture can not be opened for editing.</comment>
        <translation>Picha haiwezi kufunguliwa ili kuhaririwa.</translation>
    </message>
    <message>
        <source>RESID_TBD</source>
        <comment>The file is being edited now, it can not be edited in more instances at one time.</comment>
        <translation>Faili hili linahaririwa sasa; haliwezi kuhaririwa mara mbili kwa wakati mmoja.</translation>
    </message>
    <message>
        <source>TXT_RID_INSTRUCTIONALTXT_CURRENTLY_SELECTED_MEMORY_IS_FULL_SELECT_ANOTHER_MEMORY_LOCATION_OR_DELETE_FILES</source>
        <comment>Because the currently selected memory is full, you must select another memory location or delete files to make room.</comment>
        <translation>Kumbukumbu iliyochaguliwa imejaa. Chagua mahali pengine au futa faili ili kupata nafasi.</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_OPENING</source>
        <comment>Opening...</comment>
        <translation>Inafungua…</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_FORMAT_NOT_WRITABLE</source>
        <comment>Pictures in this format can not be saved over. Save as keeps the edits in a new .%1 picture.</comment>
        <translation>Picha za muundo huu haziwezi kuhifadhiwa juu yake. "Hifadhi kama" huweka mabadiliko katika picha mpya ya .%1.</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_PERMISSION</source>
        <comment>You may not change this file or its folder.</comment>
        <translation>Huruhusiwi kubadilisha faili hii au folda yake.</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_UNREADABLE</source>
        <comment>It could not be read; it may be damaged.</comment>
        <translation>Haikuweza kusomwa; huenda imeharibika.</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_NAME_TAKEN</source>
        <comment>Another file took that name meanwhile.</comment>
        <translation>Faili nyingine imechukua jina hilo wakati huo.</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_IO_ERROR</source>
        <comment>The memory could not be read or written.</comment>
        <translation>Kumbukumbu haikuweza kusomwa au kuandikwa.</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_NOT_SAVED</source>
        <comment>The picture could not be saved. %1</comment>
        <translation>Picha haikuweza kuhifadhiwa. %1</translation>
    </message>
</context>
<context>
    <name>ImgSvcAdjustDlg</name>
    <message>
        <source>Brightness</source>
        <translation>Mwangaza</translation>
    </message>
    <message>
        <source>Contrast</source>
        <translation>Utofautishaji</translation>
    </message>
    <message>
        <source>Saturation</source>
        <translation>Ukolezi</translation>
    </message>
    <message>
        <source>Adjust</source>
        <translation>Rekebisha</translation>
    </message>
</context>
<context>
    <name>ImgSvcCropMgr</name>
    <message>
        <source>Crop</source>
        <translation>Punguza</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Rudi</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_SIZE</source>
        <comment>%1 x %2   Select: next</comment>
        <translation>%1 x %2   Chagua: inayofuata</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_HINT_SECOND</source>
        <comment>Arrows: lower right corner</comment>
        <translation>Mishale: kona ya chini kulia</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_HINT_FIRST</source>
        <comment>Arrows: upper left corner</comment>
        <translation>Mishale: kona ya juu kushoto</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_HINT_MOVE</source>
        <comment>Arrows: move the frame</comment>
        <translation>Mishale: sogeza fremu</translation>
    </message>
</context>
<context>
    <name>ImgSvcEffectDlg</name>
    <message>
        <source>Style</source>
        <translation>Mtindo</translation>
    </message>
</context>
<context>
    <name>ImgSvcElementFactory</name>
    <message>
        <source>Hi!</source>
        <translation>Jambo!</translation>
    </message>
    <message>
        <source>Star</source>
        <translation>Nyota</translation>
    </message>
    <message>
        <source>Heart</source>
        <translation>Moyo</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>Fremu</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Tarehe</translation>
    </message>
    <message>
        <source>Speech bubble</source>
        <translation>Kiputo cha maneno</translation>
    </message>
</context>
<context>
    <name>ImgSvcListDlg</name>
    <message>
        <source>Select</source>
        <translation>Chagua</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Rudi</translation>
    </message>
</context>
<context>
    <name>ImgSvcOverlayMgr</name>
    <message>
        <source>Add Elements</source>
        <translation>Ongeza vipengele</translation>
    </message>
    <message>
        <source>Could not prepare the element.</source>
        <translation>Imeshindwa kuandaa kipengele.</translation>
    </message>
    <message>
        <source>Place</source>
        <translation>Weka</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Maliza</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Ghairi</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Rudi</translation>
    </message>
    <message>
        <source>Move: arrows   Place: Select</source>
        <translation>Sogeza: mishale   Weka: Chagua</translation>
    </message>
    <message>
        <source>&lt; %1 &gt;   Select: move</source>
        <translation>&lt; %1 &gt;   Chagua: sogeza</translation>
    </message>
    <message>
        <source>&lt; %1 &gt;   Select: add</source>
        <translation>&lt; %1 &gt;   Chagua: ongeza</translation>
    </message>
</context>
<context>
    <name>ImgSvcResizeDlg</name>
    <message>
        <source>Resize</source>
        <translation>Badilisha ukubwa</translation>
    </message>
    <message>
        <source>Size now: %1 x %2</source>
        <translation>Ukubwa sasa: %1 x %2</translation>
    </message>
    <message>
        <source>%1 x %2</source>
        <translation>%1 x %2</translation>
    </message>
    <message>
        <source>The picture is too small to be made smaller.</source>
        <translation>Picha ni ndogo mno kupunguzwa zaidi.</translation>
    </message>
</context>
<context>
    <name>ImgSvcSaveMgr</name>
    <message>
        <source>Save as</source>
        <translation>Hifadhi kama</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Rudi</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Hifadhi</translation>
    </message>
    <message>
        <source>New size: %1 x %2</source>
        <translation>Ukubwa mpya: %1 x %2</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_SELECT_DISCARDS</source>
        <comment>Select: discard the edits</comment>
        <translation>Chagua: tupa mabadiliko</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_SAVING</source>
        <comment>Saving...</comment>
        <translation>Inahifadhi…</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_YES</source>
        <comment>Yes</comment>
        <translation>Ndiyo</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_NO</source>
        <comment>No</comment>
        <translation>Hapana</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_DISCARD_QUESTION</source>
        <comment>Discard all edits? The picture stays as it was.</comment>
        <translation>Tupa mabadiliko yote? Picha itabaki kama ilivyokuwa.</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_OK</source>
        <comment>OK</comment>
        <translation>Sawa</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REPLACE_QUESTION</source>
        <comment>Replace %1?</comment>
        <translation>Badilisha %1?</translation>
    </message>
</context>
<context>
    <name>ImgSvcSaveNamePage</name>
    <message>
        <source>TXT_RID_SAVE_FILE_NAME</source>
        <comment>File name:</comment>
        <translation>Jina la faili:</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_SAVED_IN</source>
        <comment>Saved in %1</comment>
        <translation>Itahifadhiwa katika %1</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_FOLDER_NOTE</source>
        <comment>That is a folder. Enter a file name.</comment>
        <translation>Hiyo ni folda. Weka jina la faili.</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_EXTENSION_NOTE</source>
        <comment>Pictures are not saved as .%1: .%2 was added. OK saves.</comment>
        <translation>Picha hazihifadhiwi kama .%1: .%2 imeongezwa. Sawa huhifadhi.</translation>
    </message>
</context>
<context>
    <name>MMEffectCommand</name>
    <message>
        <source>None</source>
        <translation>Hakuna</translation>
    </message>
    <message>
        <source>Grayscale</source>
        <translation>Kijivu</translation>
    </message>
    <message>
        <source>Sepia</source>
        <translation>Sepia</translation>
    </message>
    <message>
        <source>Negative</source>
        <translation>Hasi</translation>
    </message>
    <message>
        <source>Soft focus</source>
        <translation>Ukungu laini</translation>
    </message>
    <message>
        <source>Sharpen</source>
        <translation>Noa</translation>
    </message>
    <message>
        <source>Emboss</source>
        <translation>Nakshi</translation>
    </message>
    <message>
        <source>Auto-fix</source>
        <translation>Rekebisha kiotomatiki</translation>
    </message>
    <message>
        <source>Adjust…</source>
        <translation>Rekebisha…</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>TXT_RID_SOFTKEY_BACK</source>
        <comment>Back</comment>
        <translation>Rudi</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_ROTATE_90_LEFT</source>
        <comment>Rotate 90 left</comment>
        <translation>Zungusha 90° kushoto</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_ROTATE_90_RIGHT</source>
        <comment>Rotate 90 right</comment>
        <translation>Zungusha 90° kulia</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_MIRROR_HORIZONTAL</source>
        <comment>Mirror Horizontal</comment>
        <translation>Geuza mlalo</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_MIRROR_VERTICAL</source>
        <comment>Mirror Vertical</comment>
        <translation>Geuza wima</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_CROP</source>
        <comment>Crop</comment>
        <translation>Punguza</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_RESIZE</source>
        <comment>Resize</comment>
        <translation>Badilisha ukubwa</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_ADD_ELEMENTS</source>
        <comment>Add Elements</comment>
        <translation>Ongeza vipengele</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_STYLE</source>
        <comment>Style</comment>
        <translation>Mtindo</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_CANCEL</source>
        <comment>Cancel</comment>
        <translation>Ghairi</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_APPLY</source>
        <comment>Apply</comment>
        <translation>Tumia</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_UNDO</source>
        <comment>Undo</comment>
        <translation>Tendua</translation>
    </message>
</context>
<context>
    <name>ZNoticeDlg</name>
    <message>
        <source>TXT_RID_NOTICE_ERROR</source>
        <comment>Error</comment>
        <translation>Hitilafu</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_WARNING</source>
        <comment>Warning</comment>
        <translation>Onyo</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_INFORMATION</source>
        <comment>Information</comment>
        <translation>Taarifa</translation>
    </message>
</context>
<context>
    <name>ZPopup</name>
    <message>
        <source>TXT_RID_SOFTKEY_OK</source>
        <comment>OK</comment>
        <translation>Sawa</translation>
    </message>
</context>
<context>
    <name>ZSoftKey</name>
    <message>
        <source>TXT_RID_SOFTKEY_SELECT</source>
        <comment>Select</comment>
        <translation>Chagua</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_BACK</source>
        <comment>Back</comment>
        <translation>Rudi</translation>
    </message>
</context>
</TS>
