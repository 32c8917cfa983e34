<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru">
<context>
    <name>HostViewer</name>
    <message>
        <source>Edit</source>
        <translation>Изменить</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>Выход</translation>
    </message>
    <message>
        <source>This picture can not be shown.</source>
        <translation>Не удаётся показать это изображение.</translation>
    </message>
</context>
<context>
    <name>ImgImplMainFrame</name>
    <message>
        <source>TXT_RID_OPTION_EDIT</source>
        <comment>Edit</comment>
        <translation>Правка</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_OPTIONS</source>
        <comment>Options</comment>
        <translation>Функции</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_NO_WORKING_STORAGE</source>
        <comment>The editor&apos;s working storage can not be used, so the picture can not be edited.</comment>
        <translation>Рабочая память редактора недоступна, поэтому изображение нельзя изменить.</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_CANNOT_OPEN_IMAGE</source>
        <comment>The picture can not be opened for editing.</comment>
        <translation>Не удаётся открыть изображение для правки.</translation>
    </message>
    <message>
        <source>RESID_TBD</source>
        <comment>The file is being edited now, it can not be edited in more instances at one time.</comment>
        <translation>Файл уже редактируется, его нельзя редактировать дважды одновременно.</translation>
    </message>
    <message>
        <source>TXT_RID_INSTRUCTIONALTXT_CURRENTLY_SELECTED_MEMORY_IS_FULL_SELECT_ANOTHER_MEMORY_LOCATION_OR_DELETE_FILES</source>
        <comment>Because the currently selected memory is full, you must select another memory location or delete files to make room.</comment>
        <translation>Выбранная память заполнена. Выберите другое место или удалите файлы, чтобы освободить место.</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_OPENING</source>
        <comment>Opening...</comment>
        <translation>Открытие…</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_FORMAT_NOT_WRITABLE</source>
        <comment>Pictures in this format can not be saved over. Save as keeps the edits in a new .%1 picture.</comment>
        <translation>Изображения в этом формате нельзя перезаписать. «Сохранить как» сохранит правки в новом изображении .%1.</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_PERMISSION</source>
        <comment>You may not change this file or its folder.</comment>
        <translation>Нет прав на изменение этого файла или его папки.</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_UNREADABLE</source>
        <comment>It could not be read; it may be damaged.</comment>
        <translation>Не удалось прочитать; возможно, файл повреждён.</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_NAME_TAKEN</source>
        <comment>Another file took that name meanwhile.</comment>
        <translation>Это имя тем временем занял другой файл.</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_IO_ERROR</source>
        <comment>The memory could not be read or written.</comment>
        <translation>Не удалось прочитать или записать память.</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_NOT_SAVED</source>
        <comment>The picture could not be saved. %1</comment>
        <translation>Не удалось сохранить изображение. %1</translation>
    </message>
</context>
<context>
    <name>ImgSvcAdjustDlg</name>
    <message>
        <source>Brightness</source>
        <translation>Яркость</translation>
    </message>
    <message>
        <source>Contrast</source>
        <translation>Контраст</translation>
    </message>
    <message>
        <source>Saturation</source>
        <translation>Насыщенность</translation>
    </message>
    <message>
        <source>Adjust</source>
        <translation>Настройка</translation>
    </message>
</context>
<context>
    <name>ImgSvcCropMgr</name>
    <message>
        <source>Crop</source>
        <translation>Обрезать</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Назад</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_SIZE</source>
        <comment>%1 x %2   Select: next</comment>
        <translation>%1 x %2   Выбор: далее</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_HINT_SECOND</source>
        <comment>Arrows: lower right corner</comment>
        <translation>Стрелки: правый нижний угол</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_HINT_FIRST</source>
        <comment>Arrows: upper left corner</comment>
        <translation>Стрелки: левый верхний угол</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_HINT_MOVE</source>
        <comment>Arrows: move the frame</comment>
        <translation>Стрелки: сдвиг рамки</translation>
    </message>
</context>
<context>
    <name>ImgSvcEffectDlg</name>
    <message>
        <source>Style</source>
        <translation>Стиль</translation>
    </message>
</context>
<context>
    <name>ImgSvcElementFactory</name>
    <message>
        <source>Hi!</source>
        <translation>Привет!</translation>
    </message>
    <message>
        <source>Star</source>
        <translation>Звезда</translation>
    </message>
    <message>
        <source>Heart</source>
        <translation>Сердце</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>Рамка</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Дата</translation>
    </message>
    <message>
        <source>Speech bubble</source>
        <translation>Выноска</translation>
    </message>
</context>
<context>
    <name>ImgSvcListDlg</name>
    <message>
        <source>Select</source>
        <translation>Выбрать</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Назад</translation>
    </message>
</context>
<context>
    <name>ImgSvcOverlayMgr</name>
    <message>
        <source>Add Elements</source>
        <translation>Добавить элементы</translation>
    </message>
    <message>
        <source>Could not prepare the element.</source>
        <translation>Не удалось подготовить элемент.</translation>
    </message>
    <message>
        <source>Place</source>
        <translation>Вставить</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Готово</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Назад</translation>
    </message>
    <message>
        <source>Move: arrows   Place: Select</source>
        <translation>Сдвиг: стрелки   Вставить: Выбор</translation>
    </message>
    <message>
        <source>&lt; %1 &gt;   Select: move</source>
        <translation>&lt; %1 &gt;   Выбор: сдвиг</translation>
    </message>
    <message>
        <source>&lt; %1 &gt;   Select: add</source>
        <translation>&lt; %1 &gt;   Выбор: добавить</translation>
    </message>
</context>
<context>
    <name>ImgSvcResizeDlg</name>
    <message>
        <source>Resize</source>
        <translation>Изменить размер</translation>
    </message>
    <message>
        <source>Size now: %1 x %2</source>
        <translation>Текущий размер: %1 x %2</translation>
    </message>
    <message>
        <source>%1 x %2</source>
        <translation>%1 x %2</translation>
    </message>
    <message>
        <source>The picture is too small to be made smaller.</source>
        <translation>Изображение слишком маленькое, его нельзя уменьшить.</translation>
    </message>
</context>
<context>
    <name>ImgSvcSaveMgr</name>
    <message>
        <source>Save as</source>
        <translation>Сохранить как</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Назад</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Сохранить</translation>
    </message>
    <message>
        <source>New size: %1 x %2</source>
        <translation>Новый размер: %1 x %2</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_SELECT_DISCARDS</source>
        <comment>Select: discard the edits</comment>
        <translation>Выбор: отменить изменения</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_SAVING</source>
        <comment>Saving...</comment>
        <translation>Сохранение…</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_YES</source>
        <comment>Yes</comment>
        <translation>Да</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_NO</source>
        <comment>No</comment>
        <translation>Нет</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_DISCARD_QUESTION</source>
        <comment>Discard all edits? The picture stays as it was.</comment>
        <translation>Отменить все изменения? Изображение останется прежним.</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_OK</source>
        <comment>OK</comment>
        <translation>OK</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REPLACE_QUESTION</source>
        <comment>Replace %1?</comment>
        <translation>Заменить %1?</translation>
    </message>
</context>
<context>
    <name>ImgSvcSaveNamePage</name>
    <message>
        <source>TXT_RID_SAVE_FILE_NAME</source>
        <comment>File name:</comment>
        <translation>Имя файла:</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_SAVED_IN</source>
        <comment>Saved in %1</comment>
        <translation>Сохраняется в %1</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_FOLDER_NOTE</source>
        <comment>That is a folder. Enter a file name.</comment>
        <translation>Это папка. Введите имя файла.</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_EXTENSION_NOTE</source>
        <comment>Pictures are not saved as .%1: .%2 was added. OK saves.</comment>
        <translation>Изображения не сохраняются как .%1: добавлено .%2. OK — сохранить.</translation>
    </message>
</context>
<context>
    <name>MMEffectCommand</name>
    <message>
        <source>None</source>
        <translation>Нет</translation>
    </message>
    <message>
        <source>Grayscale</source>
        <translation>Оттенки серого</translation>
    </message>
    <message>
        <source>Sepia</source>
        <translation>Сепия</translation>
    </message>
    <message>
        <source>Negative</source>
        <translation>Негатив</translation>
    </message>
    <message>
        <source>Soft focus</source>
        <translation>Мягкий фокус</translation>
    </message>
    <message>
        <source>Sharpen</source>
        <translation>Резкость</translation>
    </message>
    <message>
        <source>Emboss</source>
        <translation>Тиснение</translation>
    </message>
    <message>
        <source>Auto-fix</source>
        <translation>Автоулучшение</translation>
    </message>
    <message>
        <source>Adjust…</source>
        <translation>Настройка…</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>TXT_RID_SOFTKEY_BACK</source>
        <comment>Back</comment>
        <translation>Назад</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_ROTATE_90_LEFT</source>
        <comment>Rotate 90 left</comment>
        <translation>Повернуть на 90° влево</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_ROTATE_90_RIGHT</source>
        <comment>Rotate 90 right</comment>
        <translation>Повернуть на 90° вправо</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_MIRROR_HORIZONTAL</source>
        <comment>Mirror Horizontal</comment>
        <translation>Отразить по горизонтали</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_MIRROR_VERTICAL</source>
        <comment>Mirror Vertical</comment>
        <translation>Отразить по вертикали</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_CROP</source>
        <comment>Crop</comment>
        <translation>Обрезать</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_RESIZE</source>
        <comment>Resize</comment>
        <translation>Изменить размер</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_ADD_ELEMENTS</source>
        <comment>Add Elements</comment>
        <translation>Добавить элементы</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_STYLE</source>
        <comment>Style</comment>
        <translation>Стиль</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_CANCEL</source>
        <comment>Cancel</comment>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_APPLY</source>
        <comment>Apply</comment>
        <translation>Применить</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_UNDO</source>
        <comment>Undo</comment>
        <translation>Отменить шаг</translation>
    </message>
</context>
<context>
    <name>ZNoticeDlg</name>
    <message>
        <source>TXT_RID_NOTICE_ERROR</source>
        <comment>Error</comment>
        <translation>Ошибка</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_WARNING</source>
        <comment>Warning</comment>
        <translation>Внимание</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_INFORMATION</source>
        <comment>Information</comment>
        <translation>Информация</translation>
    </message>
</context>
<context>
    <name>ZPopup</name>
    <message>
        <source>TXT_RID_SOFTKEY_OK</source>
        <comment>OK</comment>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>ZSoftKey</name>
    <message>
        <source>TXT_RID_SOFTKEY_SELECT</source>
        <comment>Select</comment>
        <translation>Выбрать</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_BACK</source>
        <comment>Back</comment>
        <translation>Назад</translation>
    </message>
</context>
</TS>
