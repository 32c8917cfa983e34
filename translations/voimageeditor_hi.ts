<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="hi">
<context>
    <name>HostViewer</name>
    <message>
        <source>Edit</source>
        <translation>संपादित करें</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>बाहर निकलें</translation>
    </message>
    <message>
        <source>This picture can not be shown.</source>
        <translation>यह चित्र दिखाया नहीं जा सकता।</translation>
    </message>
</context>
<context>
    <name>ImgImplMainFrame</name>
    <message>
        <source>TXT_RID_OPTION_EDIT</source>
        <comment>Edit</comment>
        <translation>संपादन</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_OPTIONS</source>
        <comment>Options</comment>
        <translation>विकल्प</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_NO_WORKING_STORAGE</source>
        <comment>The editor&apos;s working storage can not be used, so the picture can not be edited.</comment>
        <translation>संपादक का कार्य संग्रहण उपयोग नहीं किया जा सकता, इसलिए चित्र संपादित नहीं किया जा सकता।</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_CANNOT_OPEN_IMAGE</source>
        <comment>The picture can not be opened for editing.</comment>
        <translation>चित्र संपादन के लिए खोला नहीं जा सकता।</translation>
    </message>
    <message>
        <source>RESID_TBD</source>
        <comment>The file is being edited now, it can not be edited in more instances at one time.</comment>
        <translation>यह फ़ाइल अभी संपादित की जा रही है, इसे एक साथ दो बार संपादित नहीं किया जा सकता।</translation>
    </message>
    <message>
        <source>TXT_RID_INSTRUCTIONALTXT_CURRENTLY_SELECTED_MEMORY_IS_FULL_SELECT_ANOTHER_MEMORY_LOCATION_OR_DELETE_FILES</source>
        <comment>Because the currently selected memory is full, you must select another memory location or delete files to make room.</comment>
        <translation>चुनी गई मेमोरी भरी हुई है। कोई दूसरा मेमोरी स्थान चुनें या जगह बनाने के लिए फ़ाइलें हटाएँ।</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_OPENING</source>
        <comment>Opening...</comment>
        <translation>खुल रहा है…</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_FORMAT_NOT_WRITABLE</source>
        <comment>Pictures in this format can not be saved over. Save as keeps the edits in a new .%1 picture.</comment>
        <translation>इस फ़ॉर्मैट के चित्रों पर दोबारा सहेजा नहीं जा सकता। "इस रूप में सहेजें" बदलावों को नए .%1 चित्र में रखता है।</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_PERMISSION</source>
        <comment>You may not change this file or its folder.</comment>
        <translation>आप इस फ़ाइल या इसके फ़ोल्डर को नहीं बदल सकते।</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_UNREADABLE</source>
        <comment>It could not be read; it may be damaged.</comment>
        <translation>इसे पढ़ा नहीं जा सका; यह क्षतिग्रस्त हो सकता है।</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_NAME_TAKEN</source>
        <comment>Another file took that name meanwhile.</comment>
        <translation>इस बीच किसी दूसरी फ़ाइल ने यह नाम ले लिया।</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_IO_ERROR</source>
        <comment>The memory could not be read or written.</comment>
        <translation>मेमोरी पढ़ी या लिखी नहीं जा सकी।</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_NOT_SAVED</source>
        <comment>The picture could not be saved. %1</comment>
        <translation>चित्र सहेजा नहीं जा सका। %1</translation>
    </message>
</context>
<context>
    <name>ImgSvcAdjustDlg</name>
    <message>
        <source>Brightness</source>
        <translation>चमक</translation>
    </message>
    <message>
        <source>Contrast</source>
        <translation>कंट्रास्ट</translation>
    </message>
    <message>
        <source>Saturation</source>
        <translation>संतृप्ति</translation>
    </message>
    <message>
        <source>Adjust</source>
        <translation>समायोजन</translation>
    </message>
</context>
<context>
    <name>ImgSvcCropMgr</name>
    <message>
        <source>Crop</source>
        <translation>क्रॉप</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>वापस</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_SIZE</source>
        <comment>%1 x %2   Select: next</comment>
        <translation>%1 x %2   चयन: अगला</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_HINT_SECOND</source>
        <comment>Arrows: lower right corner</comment>
        <translation>तीर: नीचे का दायाँ कोना</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_HINT_FIRST</source>
        <comment>Arrows: upper left corner</comment>
        <translation>तीर: ऊपर का बायाँ कोना</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_HINT_MOVE</source>
        <comment>Arrows: move the frame</comment>
        <translation>तीर: फ़्रेम खिसकाएँ</translation>
    </message>
</context>
<context>
    <name>ImgSvcEffectDlg</name>
    <message>
        <source>Style</source>
        <translation>शैली</translation>
    </message>
</context>
<context>
    <name>ImgSvcElementFactory</name>
    <message>
        <source>Hi!</source>
        <translation>नमस्ते!</translation>
    </message>
    <message>
        <source>Star</source>
        <translation>तारा</translation>
    </message>
    <message>
        <source>Heart</source>
        <translation>दिल</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>फ़्रेम</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>तारीख़</translation>
    </message>
    <message>
        <source>Speech bubble</source>
        <translation>संवाद बुलबुला</translation>
    </message>
</context>
<context>
    <name>ImgSvcListDlg</name>
    <message>
        <source>Select</source>
        <translation>चुनें</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>वापस</translation>
    </message>
</context>
<context>
    <name>ImgSvcOverlayMgr</name>
    <message>
        <source>Add Elements</source>
        <translation>तत्व जोड़ें</translation>
    </message>
    <message>
        <source>Could not prepare the element.</source>
        <translation>तत्व तैयार नहीं किया जा सका।</translation>
    </message>
    <message>
        <source>Place</source>
        <translation>रखें</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>हो गया</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>रद्द करें</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>वापस</translation>
    </message>
    <message>
        <source>Move: arrows   Place: Select</source>
        <translation>खिसकाएँ: तीर   रखें: चयन</translation>
    </message>
    <message>
        <source>&lt; %1 &gt;   Select: move</source>
        <translation>&lt; %1 &gt;   चयन: खिसकाएँ</translation>
    </message>
    <message>
        <source>&lt; %1 &gt;   Select: add</source>
        <translation>&lt; %1 &gt;   चयन: जोड़ें</translation>
    </message>
</context>
<context>
    <name>ImgSvcResizeDlg</name>
    <message>
        <source>Resize</source>
        <translation>आकार बदलें</translation>
    </message>
    <message>
        <source>Size now: %1 x %2</source>
        <translation>वर्तमान आकार: %1 x %2</translation>
    </message>
    <message>
        <source>%1 x %2</source>
        <translation>%1 x %2</translation>
    </message>
    <message>
        <source>The picture is too small to be made smaller.</source>
        <translation>चित्र इतना छोटा है कि इसे और छोटा नहीं किया जा सकता।</translation>
    </message>
</context>
<context>
    <name>ImgSvcSaveMgr</name>
    <message>
        <source>Save as</source>
        <translation>इस रूप में सहेजें</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>वापस</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>सहेजें</translation>
    </message>
    <message>
        <source>New size: %1 x %2</source>
        <translation>नया आकार: %1 x %2</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_SELECT_DISCARDS</source>
        <comment>Select: discard the edits</comment>
        <translation>चयन: बदलाव छोड़ें</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_SAVING</source>
        <comment>Saving...</comment>
        <translation>सहेजा जा रहा है…</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_YES</source>
        <comment>Yes</comment>
        <translation>हाँ</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_NO</source>
        <comment>No</comment>
        <translation>नहीं</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_DISCARD_QUESTION</source>
        <comment>Discard all edits? The picture stays as it was.</comment>
        <translation>सभी बदलाव छोड़ें? चित्र पहले जैसा ही रहेगा।</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_OK</source>
        <comment>OK</comment>
        <translation>ठीक है</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REPLACE_QUESTION</source>
        <comment>Replace %1?</comment>
        <translation>%1 को बदलें?</translation>
    </message>
</context>
<context>
    <name>ImgSvcSaveNamePage</name>
    <message>
        <source>TXT_RID_SAVE_FILE_NAME</source>
        <comment>File name:</comment>
        <translation>फ़ाइल का नाम:</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_SAVED_IN</source>
        <comment>Saved in %1</comment>
        <translation>%1 में सहेजा जाएगा</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_FOLDER_NOTE</source>
        <comment>That is a folder. Enter a file name.</comment>
        <translation>यह एक फ़ोल्डर है। फ़ाइल का नाम दर्ज करें।</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_EXTENSION_NOTE</source>
        <comment>Pictures are not saved as .%1: .%2 was added. OK saves.</comment>
        <translation>चित्र .%1 के रूप में सहेजे नहीं जाते: .%2 जोड़ा गया। सहेजने के लिए ठीक है दबाएँ।</translation>
    </message>
</context>
<context>
    <name>MMEffectCommand</name>
    <message>
        <source>None</source>
        <translation>कोई नहीं</translation>
    </message>
    <message>
        <source>Grayscale</source>
        <translation>ग्रेस्केल</translation>
    </message>
    <message>
        <source>Sepia</source>
        <translation>सीपिया</translation>
    </message>
    <message>
        <source>Negative</source>
        <translation>नेगेटिव</translation>
    </message>
    <message>
        <source>Soft focus</source>
        <translation>सॉफ़्ट फ़ोकस</translation>
    </message>
    <message>
        <source>Sharpen</source>
        <translation>तीक्ष्णता</translation>
    </message>
    <message>
        <source>Emboss</source>
        <translation>उभार</translation>
    </message>
    <message>
        <source>Auto-fix</source>
        <translation>स्वतः सुधार</translation>
    </message>
    <message>
        <source>Adjust…</source>
        <translation>समायोजन…</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>TXT_RID_SOFTKEY_BACK</source>
        <comment>Back</comment>
        <translation>वापस</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_ROTATE_90_LEFT</source>
        <comment>Rotate 90 left</comment>
        <translation>90° बाएँ घुमाएँ</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_ROTATE_90_RIGHT</source>
        <comment>Rotate 90 right</comment>
        <translation>90° दाएँ घुमाएँ</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_MIRROR_HORIZONTAL</source>
        <comment>Mirror Horizontal</comment>
        <translation>क्षैतिज पलटें</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_MIRROR_VERTICAL</source>
        <comment>Mirror Vertical</comment>
        <translation>लंबवत पलटें</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_CROP</source>
        <comment>Crop</comment>
        <translation>क्रॉप</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_RESIZE</source>
        <comment>Resize</comment>
        <translation>आकार बदलें</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_ADD_ELEMENTS</source>
        <comment>Add Elements</comment>
        <translation>तत्व जोड़ें</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_STYLE</source>
        <comment>Style</comment>
        <translation>शैली</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_CANCEL</source>
        <comment>Cancel</comment>
        <translation>रद्द करें</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_APPLY</source>
        <comment>Apply</comment>
        <translation>लागू करें</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_UNDO</source>
        <comment>Undo</comment>
        <translation>पूर्ववत करें</translation>
    </message>
</context>
<context>
    <name>ZNoticeDlg</name>
    <message>
        <source>TXT_RID_NOTICE_ERROR</source>
        <comment>Error</comment>
        <translation>त्रुटि</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_WARNING</source>
        <comment>Warning</comment>
        <translation>चेतावनी</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_INFORMATION</source>
        <comment>Information</comment>
        <translation>सूचना</translation>
    </message>
</context>
<context>
    <name>ZPopup</name>
    <message>
        <source>TXT_RID_SOFTKEY_OK</source>
        <comment>OK</comment>
        <translation>ठीक है</translation>
    </message>
</context>
<context>
    <name>ZSoftKey</name>
    <message>
        <source>TXT_RID_SOFTKEY_SELECT</source>
        <comment>Select</comment>
        <translation>चुनें</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_BACK</source>
        <comment>Back</comment>
        <translation>वापस</translation>
    </message>
</context>
</TS>
