<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>HostViewer</name>
    <message>
        <source>Edit</source>
        <translation>编辑</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>退出</translation>
    </message>
    <message>
        <source>This picture can not be shown.</source>
        <translation>无法显示此图片。</translation>
    </message>
</context>
<context>
    <name>ImgImplMainFrame</name>
    <message>
        <source>TXT_RID_OPTION_EDIT</source>
        <comment>Edit</comment>
        <translation>编辑</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_OPTIONS</source>
        <comment>Options</comment>
        <translation>选项</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_NO_WORKING_STORAGE</source>
        <comment>The editor&apos;s working storage can not be used, so the picture can not be edited.</comment>
        <translation>无法使用编辑器的工作存储空间，因此无法编辑图片。</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_CANNOT_OPEN_IMAGE</source>
        <comment>The picture can not be opened for editing.</comment>
        <translation>无法打开图片进行编辑。</translation>
    </message>
    <message>
        <source>RESID_TBD</source>
        <comment>The file is being edited now, it can not be edited in more instances at one time.</comment>
        <translation>该文件正在编辑中，不能同时编辑两次。</translation>
    </message>
    <message>
        <source>TXT_RID_INSTRUCTIONALTXT_CURRENTLY_SELECTED_MEMORY_IS_FULL_SELECT_ANOTHER_MEMORY_LOCATION_OR_DELETE_FILES</source>
        <comment>Because the currently selected memory is full, you must select another memory location or delete files to make room.</comment>
        <translation>当前所选存储器已满。请选择其他存储位置，或删除文件以腾出空间。</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_OPENING</source>
        <comment>Opening...</comment>
        <translation>正在打开…</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_FORMAT_NOT_WRITABLE</source>
        <comment>Pictures in this format can not be saved over. Save as keeps the edits in a new .%1 picture.</comment>
        <translation>此格式的图片无法覆盖保存。“另存为”会将编辑保存在新的 .%1 图片中。</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_PERMISSION</source>
        <comment>You may not change this file or its folder.</comment>
        <translation>您无权更改此文件或其文件夹。</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_UNREADABLE</source>
        <comment>It could not be read; it may be damaged.</comment>
        <translation>无法读取，文件可能已损坏。</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_NAME_TAKEN</source>
        <comment>Another file took that name meanwhile.</comment>
        <translation>此名称已被另一个文件占用。</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_IO_ERROR</source>
        <comment>The memory could not be read or written.</comment>
        <translation>无法读写存储器。</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_NOT_SAVED</source>
        <comment>The picture could not be saved. %1</comment>
        <translation>无法保存图片。%1</translation>
    </message>
</context>
<context>
    <name>ImgSvcAdjustDlg</name>
    <message>
        <source>Brightness</source>
        <translation>亮度</translation>
    </message>
    <message>
        <source>Contrast</source>
        <translation>对比度</translation>
    </message>
    <message>
        <source>Saturation</source>
        <translation>饱和度</translation>
    </message>
    <message>
        <source>Adjust</source>
        <translation>调整</translation>
    </message>
</context>
<context>
    <name>ImgSvcCropMgr</name>
    <message>
        <source>Crop</source>
        <translation>裁剪</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>返回</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_SIZE</source>
        <comment>%1 x %2   Select: next</comment>
        <translation>%1 x %2   选择：下一个</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_HINT_SECOND</source>
        <comment>Arrows: lower right corner</comment>
        <translation>方向键：右下角</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_HINT_FIRST</source>
        <comment>Arrows: upper left corner</comment>
        <translation>方向键：左上角</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_HINT_MOVE</source>
        <comment>Arrows: move the frame</comment>
        <translation>方向键：移动选框</translation>
    </message>
</context>
<context>
    <name>ImgSvcEffectDlg</name>
    <message>
        <source>Style</source>
        <translation>风格</translation>
    </message>
</context>
<context>
    <name>ImgSvcElementFactory</name>
    <message>
        <source>Hi!</source>
        <translation>你好！</translation>
    </message>
    <message>
        <source>Star</source>
        <translation>星星</translation>
    </message>
    <message>
        <source>Heart</source>
        <translation>爱心</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>相框</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>日期</translation>
    </message>
    <message>
        <source>Speech bubble</source>
        <translation>对话气泡</translation>
    </message>
</context>
<context>
    <name>ImgSvcListDlg</name>
    <message>
        <source>Select</source>
        <translation>选择</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>返回</translation>
    </message>
</context>
<context>
    <name>ImgSvcOverlayMgr</name>
    <message>
        <source>Add Elements</source>
        <translation>添加元素</translation>
    </message>
    <message>
        <source>Could not prepare the element.</source>
        <translation>无法准备该元素。</translation>
    </message>
    <message>
        <source>Place</source>
        <translation>放置</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>完成</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>返回</translation>
    </message>
    <message>
        <source>Move: arrows   Place: Select</source>
        <translation>移动：方向键   放置：选择</translation>
    </message>
    <message>
        <source>&lt; %1 &gt;   Select: move</source>
        <translation>&lt; %1 &gt;   选择：移动</translation>
    </message>
    <message>
        <source>&lt; %1 &gt;   Select: add</source>
        <translation>&lt; %1 &gt;   选择：添加</translation>
    </message>
</context>
<context>
    <name>ImgSvcResizeDlg</name>
    <message>
        <source>Resize</source>
        <translation>调整大小</translation>
    </message>
    <message>
        <source>Size now: %1 x %2</source>
        <translation>当前尺寸：%1 x %2</translation>
    </message>
    <message>
        <source>%1 x %2</source>
        <translation>%1 x %2</translation>
    </message>
    <message>
        <source>The picture is too small to be made smaller.</source>
        <translation>图片太小，无法再缩小。</translation>
    </message>
</context>
<context>
    <name>ImgSvcSaveMgr</name>
    <message>
        <source>Save as</source>
        <translation>另存为</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>返回</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
    <message>
        <source>New size: %1 x %2</source>
        <translation>新尺寸：%1 x %2</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_SELECT_DISCARDS</source>
        <comment>Select: discard the edits</comment>
        <translation>选择：放弃编辑</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_SAVING</source>
        <comment>Saving...</comment>
        <translation>正在保存…</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_YES</source>
        <comment>Yes</comment>
        <translation>是</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_NO</source>
        <comment>No</comment>
        <translation>否</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_DISCARD_QUESTION</source>
        <comment>Discard all edits? The picture stays as it was.</comment>
        <translation>放弃全部编辑？图片将保持原样。</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_OK</source>
        <comment>OK</comment>
        <translation>确定</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REPLACE_QUESTION</source>
        <comment>Replace %1?</comment>
        <translation>替换 %1？</translation>
    </message>
</context>
<context>
    <name>ImgSvcSaveNamePage</name>
    <message>
        <source>TXT_RID_SAVE_FILE_NAME</source>
        <comment>File name:</comment>
        <translation>文件名：</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_SAVED_IN</source>
        <comment>Saved in %1</comment>
        <translation>保存到 %1</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_FOLDER_NOTE</source>
        <comment>That is a folder. Enter a file name.</comment>
        <translation>这是一个文件夹。请输入文件名。</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_EXTENSION_NOTE</source>
        <comment>Pictures are not saved as .%1: .%2 was added. OK saves.</comment>
        <translation>图片不能保存为 .%1：已添加 .%2。按“确定”保存。</translation>
    </message>
</context>
<context>
    <name>MMEffectCommand</name>
    <message>
        <source>None</source>
        <translation>无</translation>
    </message>
    <message>
        <source>Grayscale</source>
        <translation>灰度</translation>
    </message>
    <message>
        <source>Sepia</source>
        <translation>棕褐色</translation>
    </message>
    <message>
        <source>Negative</source>
        <translation>负片</translation>
    </message>
    <message>
        <source>Soft focus</source>
        <translation>柔焦</translation>
    </message>
    <message>
        <source>Sharpen</source>
        <translation>锐化</translation>
    </message>
    <message>
        <source>Emboss</source>
        <translation>浮雕</translation>
    </message>
    <message>
        <source>Auto-fix</source>
        <translation>自动修复</translation>
    </message>
    <message>
        <source>Adjust…</source>
        <translation>调整…</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>TXT_RID_SOFTKEY_BACK</source>
        <comment>Back</comment>
        <translation>返回</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_ROTATE_90_LEFT</source>
        <comment>Rotate 90 left</comment>
        <translation>向左旋转 90°</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_ROTATE_90_RIGHT</source>
        <comment>Rotate 90 right</comment>
        <translation>向右旋转 90°</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_MIRROR_HORIZONTAL</source>
        <comment>Mirror Horizontal</comment>
        <translation>水平镜像</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_MIRROR_VERTICAL</source>
        <comment>Mirror Vertical</comment>
        <translation>垂直镜像</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_CROP</source>
        <comment>Crop</comment>
        <translation>裁剪</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_RESIZE</source>
        <comment>Resize</comment>
        <translation>调整大小</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_ADD_ELEMENTS</source>
        <comment>Add Elements</comment>
        <translation>添加元素</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_STYLE</source>
        <comment>Style</comment>
        <translation>风格</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_CANCEL</source>
        <comment>Cancel</comment>
        <translation>取消</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_APPLY</source>
        <comment>Apply</comment>
        <translation>应用</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_UNDO</source>
        <comment>Undo</comment>
        <translation>撤销</translation>
    </message>
</context>
<context>
    <name>ZNoticeDlg</name>
    <message>
        <source>TXT_RID_NOTICE_ERROR</source>
        <comment>Error</comment>
        <translation>错误</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_WARNING</source>
        <comment>Warning</comment>
        <translation>警告</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_INFORMATION</source>
        <comment>Information</comment>
        <translation>信息</translation>
    </message>
</context>
<context>
    <name>ZPopup</name>
    <message>
        <source>TXT_RID_SOFTKEY_OK</source>
        <comment>OK</comment>
        <translation>确定</translation>
    </message>
</context>
<context>
    <name>ZSoftKey</name>
    <message>
        <source>TXT_RID_SOFTKEY_SELECT</source>
        <comment>Select</comment>
        <translation>选择</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_BACK</source>
        <comment>Back</comment>
        <translation>返回</translation>
    </message>
</context>
</TS>
