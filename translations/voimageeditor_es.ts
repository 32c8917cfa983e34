<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es">
<context>
    <name>HostViewer</name>
    <message>
        <source>Edit</source>
        <translation>Editar</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>Salir</translation>
    </message>
    <message>
        <source>This picture can not be shown.</source>
        <translation>No se puede mostrar esta imagen.</translation>
    </message>
</context>
<context>
    <name>ImgImplMainFrame</name>
    <message>
        <source>TXT_RID_OPTION_EDIT</source>
        <comment>Edit</comment>
        <translation>Editar</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_OPTIONS</source>
        <comment>Options</comment>
        <translation>Opciones</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_NO_WORKING_STORAGE</source>
        <comment>The editor&apos;s working storage can not be used, so the picture can not be edited.</comment>
        <translation>No se puede usar la memoria de trabajo del editor, así que no se puede editar la imagen.</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_CANNOT_OPEN_IMAGE</source>
        <comment>The picture can not be opened for editing.</comment>
        <translation>No se puede abrir la imagen para editarla.</translation>
    </message>
    <message>
        <source>RESID_TBD</source>
        <comment>The file is being edited now, it can not be edited in more instances at one time.</comment>
        <translation>El archivo ya se está editando y no se puede editar dos veces a la vez.</translation>
    </message>
    <message>
        <source>TXT_RID_INSTRUCTIONALTXT_CURRENTLY_SELECTED_MEMORY_IS_FULL_SELECT_ANOTHER_MEMORY_LOCATION_OR_DELETE_FILES</source>
        <comment>Because the currently selected memory is full, you must select another memory location or delete files to make room.</comment>
        <translation>La memoria seleccionada está llena. Seleccione otra ubicación o elimine archivos para liberar espacio.</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_OPENING</source>
        <comment>Opening...</comment>
        <translation>Abriendo…</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_FORMAT_NOT_WRITABLE</source>
        <comment>Pictures in this format can not be saved over. Save as keeps the edits in a new .%1 picture.</comment>
        <translation>Las imágenes en este formato no se pueden sobrescribir. «Guardar como» conserva los cambios en una nueva imagen .%1.</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_PERMISSION</source>
        <comment>You may not change this file or its folder.</comment>
        <translation>No puede modificar este archivo ni su carpeta.</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_UNREADABLE</source>
        <comment>It could not be read; it may be damaged.</comment>
        <translation>No se pudo leer; puede estar dañada.</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_NAME_TAKEN</source>
        <comment>Another file took that name meanwhile.</comment>
        <translation>Otro archivo ha tomado ese nombre mientras tanto.</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REASON_IO_ERROR</source>
        <comment>The memory could not be read or written.</comment>
        <translation>No se pudo leer ni escribir en la memoria.</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_NOT_SAVED</source>
        <comment>The picture could not be saved. %1</comment>
        <translation>No se pudo guardar la imagen. %1</translation>
    </message>
</context>
<context>
    <name>ImgSvcAdjustDlg</name>
    <message>
        <source>Brightness</source>
        <translation>Brillo</translation>
    </message>
    <message>
        <source>Contrast</source>
        <translation>Contraste</translation>
    </message>
    <message>
        <source>Saturation</source>
        <translation>Saturación</translation>
    </message>
    <message>
        <source>Adjust</source>
        <translation>Ajustes</translation>
    </message>
</context>
<context>
    <name>ImgSvcCropMgr</name>
    <message>
        <source>Crop</source>
        <translation>Recortar</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Atrás</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_SIZE</source>
        <comment>%1 x %2   Select: next</comment>
        <translation>%1 x %2   Selección: siguiente</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_HINT_SECOND</source>
        <comment>Arrows: lower right corner</comment>
        <translation>Flechas: abajo a la derecha</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_HINT_FIRST</source>
        <comment>Arrows: upper left corner</comment>
        <translation>Flechas: arriba a la izquierda</translation>
    </message>
    <message>
        <source>TXT_RID_CROP_HINT_MOVE</source>
        <comment>Arrows: move the frame</comment>
        <translation>Flechas: mover el marco</translation>
    </message>
</context>
<context>
    <name>ImgSvcEffectDlg</name>
    <message>
        <source>Style</source>
        <translation>Estilo</translation>
    </message>
</context>
<context>
    <name>ImgSvcElementFactory</name>
    <message>
        <source>Hi!</source>
        <translation>¡Hola!</translation>
    </message>
    <message>
        <source>Star</source>
        <translation>Estrella</translation>
    </message>
    <message>
        <source>Heart</source>
        <translation>Corazón</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>Marco</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Fecha</translation>
    </message>
    <message>
        <source>Speech bubble</source>
        <translation>Bocadillo</translation>
    </message>
</context>
<context>
    <name>ImgSvcListDlg</name>
    <message>
        <source>Select</source>
        <translation>Seleccionar</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Atrás</translation>
    </message>
</context>
<context>
    <name>ImgSvcOverlayMgr</name>
    <message>
        <source>Add Elements</source>
        <translation>Añadir elementos</translation>
    </message>
    <message>
        <source>Could not prepare the element.</source>
        <translation>No se pudo preparar el elemento.</translation>
    </message>
    <message>
        <source>Place</source>
        <translation>Colocar</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Listo</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancelar</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Atrás</translation>
    </message>
    <message>
        <source>Move: arrows   Place: Select</source>
        <translation>Mover: flechas   Colocar: Selección</translation>
    </message>
    <message>
        <source>&lt; %1 &gt;   Select: move</source>
        <translation>&lt; %1 &gt;   Selección: mover</translation>
    </message>
    <message>
        <source>&lt; %1 &gt;   Select: add</source>
        <translation>&lt; %1 &gt;   Selección: añadir</translation>
    </message>
</context>
<context>
    <name>ImgSvcResizeDlg</name>
    <message>
        <source>Resize</source>
        <translation>Cambiar tamaño</translation>
    </message>
    <message>
        <source>Size now: %1 x %2</source>
        <translation>Tamaño actual: %1 x %2</translation>
    </message>
    <message>
        <source>%1 x %2</source>
        <translation>%1 x %2</translation>
    </message>
    <message>
        <source>The picture is too small to be made smaller.</source>
        <translation>La imagen es demasiado pequeña para reducirla.</translation>
    </message>
</context>
<context>
    <name>ImgSvcSaveMgr</name>
    <message>
        <source>Save as</source>
        <translation>Guardar como</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Atrás</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Guardar</translation>
    </message>
    <message>
        <source>New size: %1 x %2</source>
        <translation>Nuevo tamaño: %1 x %2</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_SELECT_DISCARDS</source>
        <comment>Select: discard the edits</comment>
        <translation>Selección: descartar los cambios</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_SAVING</source>
        <comment>Saving...</comment>
        <translation>Guardando…</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_YES</source>
        <comment>Yes</comment>
        <translation>Sí</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_NO</source>
        <comment>No</comment>
        <translation>No</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_DISCARD_QUESTION</source>
        <comment>Discard all edits? The picture stays as it was.</comment>
        <translation>¿Descartar todos los cambios? La imagen quedará como estaba.</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_OK</source>
        <comment>OK</comment>
        <translation>OK</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_REPLACE_QUESTION</source>
        <comment>Replace %1?</comment>
        <translation>¿Reemplazar %1?</translation>
    </message>
</context>
<context>
    <name>ImgSvcSaveNamePage</name>
    <message>
        <source>TXT_RID_SAVE_FILE_NAME</source>
        <comment>File name:</comment>
        <translation>Nombre de archivo:</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_SAVED_IN</source>
        <comment>Saved in %1</comment>
        <translation>Se guarda en %1</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_FOLDER_NOTE</source>
        <comment>That is a folder. Enter a file name.</comment>
        <translation>Es una carpeta. Escriba un nombre de archivo.</translation>
    </message>
    <message>
        <source>TXT_RID_SAVE_EXTENSION_NOTE</source>
        <comment>Pictures are not saved as .%1: .%2 was added. OK saves.</comment>
        <translation>Las imágenes no se guardan como .%1: se añadió .%2. OK guarda.</translation>
    </message>
</context>
<context>
    <name>MMEffectCommand</name>
    <message>
        <source>None</source>
        <translation>Ninguno</translation>
    </message>
    <message>
        <source>Grayscale</source>
        <translation>Escala de grises</translation>
    </message>
    <message>
        <source>Sepia</source>
        <translation>Sepia</translation>
    </message>
    <message>
        <source>Negative</source>
        <translation>Negativo</translation>
    </message>
    <message>
        <source>Soft focus</source>
        <translation>Enfoque suave</translation>
    </message>
    <message>
        <source>Sharpen</source>
        <translation>Enfocar</translation>
    </message>
    <message>
        <source>Emboss</source>
        <translation>Relieve</translation>
    </message>
    <message>
        <source>Auto-fix</source>
        <translation>Corrección auto</translation>
    </message>
    <message>
        <source>Adjust…</source>
        <translation>Ajustes…</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>TXT_RID_SOFTKEY_BACK</source>
        <comment>Back</comment>
        <translation>Atrás</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_ROTATE_90_LEFT</source>
        <comment>Rotate 90 left</comment>
        <translation>Girar 90° a la izquierda</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_ROTATE_90_RIGHT</source>
        <comment>Rotate 90 right</comment>
        <translation>Girar 90° a la derecha</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_MIRROR_HORIZONTAL</source>
        <comment>Mirror Horizontal</comment>
        <translation>Voltear en horizontal</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_MIRROR_VERTICAL</source>
        <comment>Mirror Vertical</comment>
        <translation>Voltear en vertical</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_CROP</source>
        <comment>Crop</comment>
        <translation>Recortar</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_RESIZE</source>
        <comment>Resize</comment>
        <translation>Cambiar tamaño</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_ADD_ELEMENTS</source>
        <comment>Add Elements</comment>
        <translation>Añadir elementos</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_STYLE</source>
        <comment>Style</comment>
        <translation>Estilo</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_CANCEL</source>
        <comment>Cancel</comment>
        <translation>Cancelar</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_APPLY</source>
        <comment>Apply</comment>
        <translation>Aplicar</translation>
    </message>
    <message>
        <source>TXT_RID_OPTION_UNDO</source>
        <comment>Undo</comment>
        <translation>Deshacer</translation>
    </message>
</context>
<context>
    <name>ZNoticeDlg</name>
    <message>
        <source>TXT_RID_NOTICE_ERROR</source>
        <comment>Error</comment>
        <translation>Error</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_WARNING</source>
        <comment>Warning</comment>
        <translation>Advertencia</translation>
    </message>
    <message>
        <source>TXT_RID_NOTICE_INFORMATION</source>
        <comment>Information</comment>
        <translation>Información</translation>
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
        <translation>Seleccionar</translation>
    </message>
    <message>
        <source>TXT_RID_SOFTKEY_BACK</source>
        <comment>Back</comment>
        <translation>Atrás</translation>
    </message>
</context>
</TS>
