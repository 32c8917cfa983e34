<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ar">
<context>
    <name>HostViewer</name>
    <message>
        <source>Edit</source>
        <translation>تعديل</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>خروج</translation>
    </message>
    <message>
        <source>This picture can not be shown.</source>
        <translation>لا يمكن عرض هذه الصورة.</translation>
    </message>
</context>
<context>
    <name>ImgImplMainFrame</name>
    <message>
        <source>TXT_RID_OPTION_EDIT</source>
        <comment>Edit</comment>
        <translation>تعديل</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_OPTIONS</source>
        <comment>Options</comment>
        <translation>خيارات</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_NO_WORKING_STORAGE</source>
        <comment>The editor&apos;s working storage can not be used, so the picture can not be edited.</comment>
        <translation>لا يمكن استخدام مساحة العمل الخاصة بالمحرر، لذا لا يمكن تعديل الصورة.</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_CANNOT_OPEN_IMAGE</source>
        <comment>The picture can not be opened for editing.</comment>
        <translation>لا يمكن فتح الصورة للتعديل.</translation>
    </message>
    <message>
        <source>RESID_TBD</source>
        <comment>The file is being edited now, it can not be edited in more instances at one time.</comment>
        <translation>يجري تعديل الملف الآن، ولا يمكن تعديله مرتين في الوقت نفسه.</translation>
    </message>
    <message>
        <source>TXT_RID_INSTRUCTIONALTXT_CURRENTLY_SELECTED_MEMORY_IS_FULL_SELECT_ANOTHER_MEMORY_LOCATION_OR_DELETE_FILES</source>
        <comment>Because the currently selected memory is full, you must select another memory location or delete files to make room.</comment>
        <translation>الذاكرة المحددة ممتلئة. اختر موقع ذاكرة آخر أو احذف ملفات لإفراغ مساحة.</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_OPENING</source>
        <comment>Opening...</comment>
        <translation>جارٍ الفتح…</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_FORMAT_NOT_WRITABLE</source>
        <comment>Pictures in this format can not be saved over. Save as keeps the edits in a new .%1 picture.</comment>
        <translation>لا يمكن الحفظ فوق الصور بهذا التنسيق. «حفظ باسم» يحفظ التعديلات في صورة ‎.%1 جديدة.</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_PERMISSION</source>
        <comment>You may not change this file or its folder.</comment>
        <translation>لا يُسمح لك بتغيير هذا الملف أو مجلده.</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_UNREADABLE</source>
        <comment>It could not be read; it may be damaged.</comment>
        <translation>تعذّرت قراءتها؛ ربما تكون تالفة.</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_NAME_TAKEN</source>
        <comment>Another file took that name meanwhile.</comment>
        <translation>أخذ ملف آخر هذا الاسم في أثناء ذلك.</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_IO_ERROR</source>
        <comment>The memory could not be read or written.</comment>
        <translation>تعذّرت القراءة من الذاكرة أو الكتابة إليها.</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_NOT_SAVED</source>
        <comment>The picture could not be saved. %1</comment>
        <translation>تعذّر حفظ الصورة. %1</translation>
    </message>
</context>
<context>
    <name>ImgSvcAdjustDlg</name>
    <message>
        <source>Brightness</source>
        <translation>السطوع</translation>
    </message>
    <message>
        <source>Contrast</source>
        <translation>التباين</translation>
    </message>
    <message>
        <source>Saturation</source>
        <translation>التشبع</translation>
    </message>
    <message>
        <source>Adjust</source>
        <translation>ضبط</translation>
    </message>
</context>
<context>
    <name>ImgSvcCropMgr</name>
    <message>
        <source>Crop</source>
        <translation>اقتصاص</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>رجوع</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_SIZE</source>
        <comment>%1 x %2   Select: next</comment>
        <translation>‎%1 x %2   تحديد: التالي</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_HINT_SECOND</source>
        <comment>Arrows: lower right corner</comment>
        <translation>الأسهم: الزاوية اليمنى السفلى</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_HINT_FIRST</source>
        <comment>Arrows: upper left corner</comment>
        <translation>الأسهم: الزاوية اليسرى العليا</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_HINT_MOVE</source>
        <comment>Arrows: move the frame</comment>
        <translation>الأسهم: تحريك الإطار</translation>
    </message>
</context>
<context>
    <name>ImgSvcEffectDlg</name>
    <message>
        <source>Style</source>
        <translation>نمط</translation>
    </message>
</context>
<context>
    <name>ImgSvcElementFactory</name>
    <message>
        <source>Hi!</source>
        <translation>مرحبًا!</translation>
    </message>
    <message>
        <source>Star</source>
        <translation>نجمة</translation>
    </message>
    <message>
        <source>Heart</source>
        <translation>قلب</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>إطار</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>التاريخ</translation>
    </message>
    <message>
        <source>Speech bubble</source>
        <translation>فقاعة كلام</translation>
    </message>
</context>
<context>
    <name>ImgSvcListDlg</name>
    <message>
        <source>Select</source>
        <translation>تحديد</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>رجوع</translation>
    </message>
</context>
<context>
    <name>ImgSvcOverlayMgr</name>
    <message>
        <source>Add Elements</source>
        <translation>إضافة عناصر</translation>
    </message>
    <message>
        <source>Could not prepare the element.</source>
        <translation>تعذّر تجهيز العنصر.</translation>
    </message>
    <message>
        <source>Place</source>
        <translation>وضع</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>تم</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>إلغاء</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>رجوع</translation>
    </message>
    <message>
        <source>Move: arrows   Place: Select</source>
        <translation>التحريك: الأسهم   الوضع: تحديد</translation>
    </message>
    <message>
        <source>&lt; %1 &gt;   Select: move</source>
        <translation>&lt; %1 &gt;   تحديد: تحريك</translation>
    </message>
    <message>
        <source>&lt; %1 &gt;   Select: add</source>
        <translation>&lt; %1 &gt;   تحديد: إضافة</translation>
    </message>
</context>
<context>
    <name>ImgSvcResizeDlg</name>
    <message>
        <source>Resize</source>
        <translation>تغيير الحجم</translation>
    </message>
    <message>
        <source>Size now: %1 x %2</source>
        <translation>الحجم الحالي: ‎%1 x %2</translation>
    </message>
    <message>
        <source>%1 x %2</source>
        <translation>‎%1 x %2</translation>
    </message>
    <message>
        <source>The picture is too small to be made smaller.</source>
        <translation>الصورة صغيرة جدًا ولا يمكن تصغيرها.</translation>
    </message>
</context>
<context>
    <name>ImgSvcSaveMgr</name>
    <message>
        <source>Save as</source>
        <translation>حفظ باسم</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>رجوع</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>حفظ</translation>
    </message>
    <message>
        <source>New size: %1 x %2</source>
        <translation>الحجم الجديد: ‎%1 x %2</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_SELECT_DISCARDS</source>
        <comment>Select: discard the edits</comment>
        <translation>تحديد: تجاهل التعديلات</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_SAVING</source>
        <comment>Saving...</comment>
        <translation>جارٍ الحفظ…</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_YES</source>
        <comment>Yes</comment>
        <translation>نعم</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_NO</source>
        <comment>No</comment>
        <translation>لا</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_DISCARD_QUESTION</source>
        <comment>Discard all edits? The picture stays as it was.</comment>
        <translation>تجاهل كل التعديلات؟ ستبقى الصورة كما كانت.</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_OK</source>
        <comment>OK</comment>
        <translation>موافق</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REPLACE_QUESTION</source>
        <comment>Replace %1?</comment>
        <translation>استبدال %1؟</translation>
    </message>
</context>
<context>
    <name>ImgSvcSaveNamePage</name>
    <message>
        <source>TXT_RID_SAVE_FILE_NAME</source>
        <comment>File name:</comment>
        <translation>اسم الملف:</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_SAVED_IN</source>
        <comment>Saved in %1</comment>
        <translation>يُحفظ في %1</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_FOLDER_NOTE</source>
        <comment>That is a folder. Enter a file name.</comment>
        <translation>هذا مجلد. أدخل اسم ملف.</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_EXTENSION_NOTE</source>
        <comment>Pictures are not saved as .%1: .%2 was added. OK saves.</comment>
        <translation>لا تُحفظ الصور بامتداد ‎.%1، لذا أُضيف ‎.%2. اضغط موافق للحفظ.</translation>
    </message>
</context>
<context>
    <name>MMEffectCommand</name>
    <message>
        <source>None</source>
        <translation>بلا</translation>
    </message>
    <message>
        <source>Grayscale</source>
        <translation>تدرج رمادي</translation>
    </message>
    <message>
        <source>Sepia</source>
        <translation>سيبيا</translation>
    </message>
    <message>
        <source>Negative</source>
        <translation>سلبي</translation>
    </message>
    <message>
        <source>Soft focus</source>
        <translation>تركيز ناعم</translation>
    </message>
    <message>
        <source>Sharpen</source>
        <translation>زيادة الحدة</translation>
    </message>
    <message>
        <source>Emboss</source>
        <translation>نقش بارز</translation>
    </message>
    <message>
        <source>Auto-fix</source>
        <translation>إصلاح تلقائي</translation>
    </message>
    <message>
        <source>Adjust…</source>
        <translation>ضبط…</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>TXT_RID_SOFTKEY_BACK</source>
        <comment>Back</comment>
        <translation>رجوع</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_ROTATE_90_LEFT</source>
        <comment>Rotate 90 left</comment>
        <translation>تدوير 90° لليسار</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_ROTATE_90_RIGHT</source>
        <comment>Rotate 90 right</comment>
        <translation>تدوير 90° لليمين</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_MIRROR_HORIZONTAL</source>
        <comment>Mirror Horizontal</comment>
        <translation>انعكاس أفقي</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_MIRROR_VERTICAL</source>
        <comment>Mirror Vertical</comment>
        <translation>انعكاس رأسي</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_CROP</source>
        <comment>Crop</comment>
        <translation>اقتصاص</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_RESIZE</source>
        <comment>Resize</comment>
        <translation>تغيير الحجم</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_ADD_ELEMENTS</source>
        <comment>Add Elements</comment>
        <translation>إضافة عناصر</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_STYLE</source>
        <comment>Style</comment>
        <translation>نمط</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_CANCEL</source>
        <comment>Cancel</comment>
        <translation>إلغاء</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_APPLY</source>
        <comment>Apply</comment>
        <translation>تطبيق</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_UNDO</source>
        <comment>Undo</comment>
        <translation>تراجع</translation>
    </message>
</context>
<context>
    <name>ZNoticeDlg</name>
    <message>
        <source>TXT_RID_NOTICE_ERROR</source>
        <comment>Error</comment>
        <translation>خطأ</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_WARNING</source>
        <comment>Warning</comment>
        <translation>تحذير</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_INFORMATION</source>
        <comment>Information</comment>
        <translation>معلومات</translation>
    </message>
</context>
<context>
    <name>ZPopup</name>
    <message>
        <source>TXT_RID_SOFTKEY_OK</source>
        <comment>OK</comment>
        <translation>موافق</translation>
    </message>
</context>
<context>
    <name>ZSoftKey</name>
    <message>
        <source>TXT_RID_SOFTKEY_SELECT</source>
        <comment>Select</comment>
        <translation>تحديد</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_BACK</source>
        <comment>Back</comment>
        <translation>رجوع</translation>
    </message>
</context>
</TS>
