<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es" sourcelanguage="en_US">
<context>
    <name>AboutBox</name>
    <message>
        <source>Shows very large wavelet-compressed images from files and image servers.</source>
        <translation>Muestra imágenes muy grandes comprimidas con wavelets, de archivos y de servidores de imágenes.</translation>
    </message>
    <message>
        <source>No layer plug-in is loaded.</source>
        <translation>No hay ningún complemento de capas cargado.</translation>
    </message>
    <message>
        <source>Plug-ins:</source>
        <translation>Complementos:</translation>
    </message>
    <message>
        <source>About %1</source>
        <translation>Acerca de %1</translation>
    </message>
</context>
<context>
    <name>FailureReport</name>
    <message numerus="yes">
        <source>%1 of %n sources could not be opened.</source>
        <translation>
            <numerusform>No se pudo abrir %1 de %n fuente.</numerusform>
            <numerusform>No se pudieron abrir %1 de %n fuentes.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>... and %n more (see the details)</source>
        <translation>
            <numerusform>... y %n más (véanse los detalles)</numerusform>
            <numerusform>... y %n más (véanse los detalles)</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>LayerOpener</name>
    <message>
        <source>%1 cannot be opened: no layer plug-in is loaded. %2</source>
        <translation>No se puede abrir %1: no hay ningún complemento de capas cargado. %2</translation>
    </message>
    <message>
        <source>the format is not known</source>
        <translation>el formato es desconocido</translation>
    </message>
    <message>
        <source>%1 cannot be opened: %2</source>
        <translation>No se puede abrir %1: %2</translation>
    </message>
</context>
<context>
    <name>ProjectReader</name>
    <message>
        <source>The project %1 cannot be read: %2.</source>
        <translation>No se puede leer el proyecto %1: %2.</translation>
    </message>
    <message>
        <source>%1 is too large to be a project.</source>
        <translation>%1 es demasiado grande para ser un proyecto.</translation>
    </message>
    <message>
        <source>%1 is not a project: %2 in line %3, column %4.</source>
        <translation>%1 no es un proyecto: %2 en la línea %3, columna %4.</translation>
    </message>
    <message>
        <source>%1 is an XML file, but not a project.</source>
        <translation>%1 es un archivo XML, pero no un proyecto.</translation>
    </message>
    <message>
        <source>The project %1 does not tell its version.</source>
        <translation>El proyecto %1 no indica su versión.</translation>
    </message>
    <message>
        <source>The project %1 was written by a newer version of this program.</source>
        <translation>El proyecto %1 se guardó con una versión más reciente de este programa.</translation>
    </message>
    <message>
        <source>A view has no valid extent and is shown whole.</source>
        <translation>Una vista no tiene una extensión válida y se muestra completa.</translation>
    </message>
    <message>
        <source>A layer of the project does not tell its kind.</source>
        <translation>Una capa del proyecto no indica su tipo.</translation>
    </message>
    <message>
        <source>No loaded plug-in makes layers of the kind %1.</source>
        <translation>Ningún complemento cargado crea capas del tipo %1.</translation>
    </message>
    <message>
        <source>A layer of the kind %1 cannot be restored.</source>
        <translation>No se puede restaurar una capa del tipo %1.</translation>
    </message>
    <message>
        <source>%1 is too large to be a project: it has more than %2 elements and attributes, or more than %3 levels of them.</source>
        <translation>%1 es demasiado grande para ser un proyecto: tiene más de %2 elementos y atributos o más de %3 niveles de ellos.</translation>
    </message>
</context>
<context>
    <name>ProjectWriter</name>
    <message>
        <source>%1 cannot be written: %2</source>
        <translation>No se puede escribir %1: %2</translation>
    </message>
</context>
<context>
    <name>Viewer</name>
    <message>
        <source>No layer plug-in was found in %1.</source>
        <translation>No se encontró ningún complemento de capas en %1.</translation>
    </message>
</context>
<context>
    <name>Viewer::Geographic</name>
    <message>
        <source>%1° W</source>
        <translation>%1° O</translation>
    </message>
    <message>
        <source>%1° E</source>
        <translation>%1° E</translation>
    </message>
    <message>
        <source>%1° S</source>
        <translation>%1° S</translation>
    </message>
    <message>
        <source>%1° N</source>
        <translation>%1° N</translation>
    </message>
</context>
<context>
    <name>Viewer::IdentifyDock</name>
    <message>
        <source>Identify</source>
        <translation>Identificar</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nombre</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Valor</translation>
    </message>
    <message>
        <source>Click on the map to see what lies there.</source>
        <translation>Haga clic en el mapa para ver qué hay allí.</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Copiar</translation>
    </message>
    <message>
        <source>Place</source>
        <translation>Lugar</translation>
    </message>
    <message>
        <source>X</source>
        <translation>X</translation>
    </message>
    <message>
        <source>Y</source>
        <translation>Y</translation>
    </message>
    <message>
        <source>reading...</source>
        <translation>leyendo...</translation>
    </message>
    <message>
        <source>lies elsewhere</source>
        <translation>está en otro lugar</translation>
    </message>
    <message>
        <source>Column, row</source>
        <translation>Columna, fila</translation>
    </message>
    <message>
        <source>Band %1</source>
        <translation>Banda %1</translation>
    </message>
    <message>
        <source>Longitude</source>
        <translation>Longitud</translation>
    </message>
    <message>
        <source>Latitude</source>
        <translation>Latitud</translation>
    </message>
</context>
<context>
    <name>Viewer::LayerListDock</name>
    <message>
        <source>Layers</source>
        <translation>Capas</translation>
    </message>
    <message>
        <source>&amp;Zoom to Layer</source>
        <translation>&amp;Zoom a la capa</translation>
    </message>
    <message>
        <source>Show all of this layer</source>
        <translation>Mostrar toda la capa</translation>
    </message>
    <message>
        <source>Zoom to &amp;1:1</source>
        <translation>Zoom a &amp;1:1</translation>
    </message>
    <message>
        <source>Show this layer with one cell per pixel</source>
        <translation>Mostrar la capa con una celda por píxel</translation>
    </message>
    <message>
        <source>Move &amp;Up</source>
        <translation>&amp;Subir</translation>
    </message>
    <message>
        <source>Move the layer up</source>
        <translation>Subir la capa</translation>
    </message>
    <message>
        <source>Move &amp;Down</source>
        <translation>&amp;Bajar</translation>
    </message>
    <message>
        <source>Move the layer down</source>
        <translation>Bajar la capa</translation>
    </message>
    <message>
        <source>Move to &amp;Top</source>
        <translation>Poner a&amp;rriba del todo</translation>
    </message>
    <message>
        <source>Move to &amp;Bottom</source>
        <translation>Poner aba&amp;jo del todo</translation>
    </message>
    <message>
        <source>Re&amp;name</source>
        <translation>Re&amp;nombrar</translation>
    </message>
    <message>
        <source>&amp;Copy File Name or Address</source>
        <translation>&amp;Copiar nombre de archivo o dirección</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>&amp;Quitar</translation>
    </message>
    <message>
        <source>Remove the layer from the view</source>
        <translation>Quitar la capa de la vista</translation>
    </message>
    <message>
        <source>&amp;Properties...</source>
        <translation>&amp;Propiedades...</translation>
    </message>
    <message>
        <source>What is known of this layer</source>
        <translation>Información sobre esta capa</translation>
    </message>
</context>
<context>
    <name>Viewer::LayerListModel</name>
    <message>
        <source>%1 × %2 cells</source>
        <translation>%1 × %2 celdas</translation>
    </message>
</context>
<context>
    <name>Viewer::LayerSummaryPage</name>
    <message>
        <source>General</source>
        <translation>General</translation>
    </message>
    <message>
        <source>Source:</source>
        <translation>Fuente:</translation>
    </message>
    <message>
        <source>Format:</source>
        <translation>Formato:</translation>
    </message>
    <message>
        <source>Access:</source>
        <translation>Acceso:</translation>
    </message>
    <message>
        <source>Coordinate system:</source>
        <translation>Sistema de coordenadas:</translation>
    </message>
    <message>
        <source>First corner:</source>
        <translation>Primera esquina:</translation>
    </message>
    <message>
        <source>Opposite corner:</source>
        <translation>Esquina opuesta:</translation>
    </message>
    <message>
        <source>Comments:</source>
        <translation>Comentarios:</translation>
    </message>
    <message>
        <source>Size in cells:</source>
        <translation>Tamaño en celdas:</translation>
    </message>
    <message>
        <source>Cell size:</source>
        <translation>Tamaño de celda:</translation>
    </message>
    <message>
        <source>Cell type:</source>
        <translation>Tipo de celda:</translation>
    </message>
    <message>
        <source>Bands:</source>
        <translation>Bandas:</translation>
    </message>
    <message>
        <source>Rotation:</source>
        <translation>Rotación:</translation>
    </message>
    <message>
        <source>%1° clockwise</source>
        <translation>%1° en sentido horario</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <extracomment>Two numbers, which must be told apart where the comma is the decimal point.</extracomment>
        <translation>%1; %2</translation>
    </message>
</context>
<context>
    <name>Viewer::LogDock</name>
    <message>
        <source>Log</source>
        <translation>Registro</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Copiar</translation>
    </message>
    <message>
        <source>Copies the selected lines, or all that are shown</source>
        <translation>Copia las líneas seleccionadas o todas las que se muestran</translation>
    </message>
    <message>
        <source>C&amp;lear</source>
        <translation>Vac&amp;iar</translation>
    </message>
    <message>
        <source>The least severe messages that are shown, and logged from now on</source>
        <translation>Gravedad mínima de los mensajes que se muestran y que se registran a partir de ahora</translation>
    </message>
    <message>
        <source>Fro&amp;m level:</source>
        <translation>&amp;Desde el nivel:</translation>
    </message>
</context>
<context>
    <name>Viewer::LogModel</name>
    <message>
        <source>Time</source>
        <translation>Hora</translation>
    </message>
    <message>
        <source>Level</source>
        <translation>Nivel</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Mensaje</translation>
    </message>
</context>
<context>
    <name>Viewer::MainActions</name>
    <message>
        <source>&amp;Open...</source>
        <translation>&amp;Abrir...</translation>
    </message>
    <message>
        <source>Open images in the current view</source>
        <translation>Abrir imágenes en la vista actual</translation>
    </message>
    <message>
        <source>Open in Ne&amp;w View...</source>
        <translation>Abrir en una &amp;vista nueva...</translation>
    </message>
    <message>
        <source>Open images in a view of their own</source>
        <translation>Abrir imágenes en una vista propia</translation>
    </message>
    <message>
        <source>&amp;New View</source>
        <translation>Vista &amp;nueva</translation>
    </message>
    <message>
        <source>Add an empty map view</source>
        <translation>Añadir una vista de mapa vacía</translation>
    </message>
    <message>
        <source>Open &amp;Project...</source>
        <translation>Abrir &amp;proyecto...</translation>
    </message>
    <message>
        <source>Replace all views by those of a project</source>
        <translation>Reemplazar todas las vistas por las de un proyecto</translation>
    </message>
    <message>
        <source>&amp;Save Project</source>
        <translation>&amp;Guardar proyecto</translation>
    </message>
    <message>
        <source>Save all views and their layers</source>
        <translation>Guardar todas las vistas y sus capas</translation>
    </message>
    <message>
        <source>Save Project &amp;As...</source>
        <translation>Guardar proyecto c&amp;omo...</translation>
    </message>
    <message>
        <source>Save all views and their layers in another file</source>
        <translation>Guardar todas las vistas y sus capas en otro archivo</translation>
    </message>
    <message>
        <source>Save P&amp;icture...</source>
        <translation>Guardar i&amp;magen...</translation>
    </message>
    <message>
        <source>Save what the current view shows as a picture</source>
        <translation>Guardar como imagen lo que muestra la vista actual</translation>
    </message>
    <message>
        <source>Pre&amp;ferences...</source>
        <translation>Pre&amp;ferencias...</translation>
    </message>
    <message>
        <source>Settings of the plug-ins</source>
        <translation>Ajustes de los complementos</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Salir</translation>
    </message>
    <message>
        <source>About &amp;Qt</source>
        <translation>Acerca de &amp;Qt</translation>
    </message>
    <message>
        <source>Zoom &amp;In</source>
        <translation>&amp;Acercar</translation>
    </message>
    <message>
        <source>Show the map larger</source>
        <translation>Mostrar el mapa más grande</translation>
    </message>
    <message>
        <source>Zoom &amp;Out</source>
        <translation>A&amp;lejar</translation>
    </message>
    <message>
        <source>Show the map smaller</source>
        <translation>Mostrar el mapa más pequeño</translation>
    </message>
    <message>
        <source>Zoom to &amp;All</source>
        <translation>Zoom a &amp;todo</translation>
    </message>
    <message>
        <source>Show all layers of the view</source>
        <translation>Mostrar todas las capas de la vista</translation>
    </message>
    <message>
        <source>Zoom to &amp;Layer</source>
        <translation>Zoom a la &amp;capa</translation>
    </message>
    <message>
        <source>Show all of the selected layer</source>
        <translation>Mostrar toda la capa seleccionada</translation>
    </message>
    <message>
        <source>Zoom to &amp;1:1</source>
        <translation>Zoom a &amp;1:1</translation>
    </message>
    <message>
        <source>Show one cell of the selected layer per pixel</source>
        <translation>Mostrar una celda de la capa seleccionada por píxel</translation>
    </message>
    <message>
        <source>Layer &amp;Properties...</source>
        <translation>&amp;Propiedades de la capa...</translation>
    </message>
    <message>
        <source>What is known of the selected layer</source>
        <translation>Información sobre la capa seleccionada</translation>
    </message>
    <message>
        <source>&amp;Tabs</source>
        <translation>&amp;Pestañas</translation>
    </message>
    <message>
        <source>Show one view at a time, in tabs</source>
        <translation>Mostrar las vistas de una en una, en pestañas</translation>
    </message>
    <message>
        <source>&amp;Cascade</source>
        <translation>En c&amp;ascada</translation>
    </message>
    <message>
        <source>Show the views as windows, one behind the other</source>
        <translation>Mostrar las vistas como ventanas, una detrás de otra</translation>
    </message>
    <message>
        <source>T&amp;ile</source>
        <translation>En &amp;mosaico</translation>
    </message>
    <message>
        <source>Show the views as windows, side by side</source>
        <translation>Mostrar las vistas como ventanas, una junto a otra</translation>
    </message>
    <message>
        <source>Ne&amp;xt View</source>
        <translation>Vista &amp;siguiente</translation>
    </message>
    <message>
        <source>&amp;Rename View...</source>
        <translation>&amp;Renombrar vista...</translation>
    </message>
    <message>
        <source>Cl&amp;ose View</source>
        <translation>&amp;Cerrar vista</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ver</translation>
    </message>
    <message>
        <source>&amp;Window</source>
        <translation>Ve&amp;ntana</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>A&amp;yuda</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Archivo</translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation>Abrir &amp;reciente</translation>
    </message>
    <message>
        <source>Open Recent Pro&amp;ject</source>
        <translation>Abrir proyecto rec&amp;iente</translation>
    </message>
    <message>
        <source>Main</source>
        <translation>Barra de herramientas principal</translation>
    </message>
    <message>
        <source>&amp;About %1</source>
        <translation>&amp;Acerca de %1</translation>
    </message>
    <message>
        <source>&amp;Copy Picture</source>
        <translation>&amp;Copiar imagen</translation>
    </message>
    <message>
        <source>Put what the current view shows into the clipboard</source>
        <translation>Poner en el portapapeles lo que muestra la vista actual</translation>
    </message>
    <message>
        <source>&amp;Full Screen</source>
        <translation>Pa&amp;ntalla completa</translation>
    </message>
    <message>
        <source>Fill the screen with the window</source>
        <translation>Llenar la pantalla con la ventana</translation>
    </message>
    <message>
        <source>Next &amp;Panel</source>
        <translation>Panel si&amp;guiente</translation>
    </message>
    <message>
        <source>Give the keyboard to the next panel</source>
        <translation>Dar el teclado al panel siguiente</translation>
    </message>
    <message>
        <source>Pre&amp;vious Panel</source>
        <translation>Pan&amp;el anterior</translation>
    </message>
    <message>
        <source>Give the keyboard to the panel before</source>
        <translation>Dar el teclado al panel anterior</translation>
    </message>
    <message>
        <source>&amp;Back</source>
        <translation>Atrá&amp;s</translation>
    </message>
    <message>
        <source>Show what the view showed before</source>
        <translation>Mostrar lo que la vista mostraba antes</translation>
    </message>
    <message>
        <source>Fo&amp;rward</source>
        <translation>A&amp;delante</translation>
    </message>
    <message>
        <source>Show what the view showed before going back</source>
        <translation>Mostrar lo que la vista mostraba antes de volver</translation>
    </message>
    <message>
        <source>&amp;Go to Coordinates...</source>
        <translation>&amp;Ir a coordenadas...</translation>
    </message>
    <message>
        <source>Show a place in the middle of the view</source>
        <translation>Mostrar un lugar en el centro de la vista</translation>
    </message>
</context>
<context>
    <name>Viewer::MainWindow</name>
    <message>
        <source>Open</source>
        <translation>Abrir</translation>
    </message>
    <message>
        <source>Open in New View</source>
        <translation>Abrir en una vista nueva</translation>
    </message>
    <message>
        <source>%1 cannot be shown.</source>
        <translation>No se puede mostrar %1.</translation>
    </message>
    <message>
        <source>Save Picture</source>
        <translation>Guardar imagen</translation>
    </message>
    <message>
        <source>PNG images (*.png)</source>
        <translation>Imágenes PNG (*.png)</translation>
    </message>
    <message>
        <source>Rename View</source>
        <translation>Renombrar vista</translation>
    </message>
    <message>
        <source>Title (empty: the layer&apos;s name):</source>
        <translation>Título (vacío: el nombre de la capa):</translation>
    </message>
    <message>
        <source>JPEG images (*.jpg *.jpeg)</source>
        <translation>Imágenes JPEG (*.jpg *.jpeg)</translation>
    </message>
    <message>
        <source>Go to Coordinates</source>
        <translation>Ir a coordenadas</translation>
    </message>
    <message>
        <source>X and Y, or latitude and longitude, such as 46.72 N 9.92 E:</source>
        <translation>X e Y, o latitud y longitud, como 46.72 N 9.92 E:</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is no place that can be shown here.</source>
        <translation>«%1» no es un lugar que pueda mostrarse aquí.</translation>
    </message>
</context>
<context>
    <name>Viewer::MapArea</name>
    <message>
        <source>View %1</source>
        <translation>Vista %1</translation>
    </message>
</context>
<context>
    <name>Viewer::MapMenu</name>
    <message>
        <source>&amp;What Is Here?</source>
        <translation>¿&amp;Qué hay aquí?</translation>
    </message>
    <message>
        <source>&amp;Copy Coordinates %1</source>
        <translation>&amp;Copiar coordenadas %1</translation>
    </message>
    <message>
        <source>C&amp;entre Here</source>
        <translation>C&amp;entrar aquí</translation>
    </message>
</context>
<context>
    <name>Viewer::MapNotices</name>
    <message>
        <source>%1 lies outside the view.</source>
        <translation>%1 está fuera de la vista.</translation>
    </message>
    <message>
        <source>Zoom to Layer</source>
        <translation>Ajustar a la capa</translation>
    </message>
    <message>
        <source>%1 is damaged and shown as well as can be: %2</source>
        <translation>%1 está dañado y se muestra lo mejor posible: %2</translation>
    </message>
    <message>
        <source>The connection is lost: %1</source>
        <translation>Se perdió la conexión: %1</translation>
    </message>
    <message>
        <source>Reconnect</source>
        <translation>Reconectar</translation>
    </message>
    <message>
        <source>Open Again</source>
        <translation>Volver a abrir</translation>
    </message>
    <message>
        <source>Hide this message</source>
        <translation>Ocultar este mensaje</translation>
    </message>
</context>
<context>
    <name>Viewer::Pictures</name>
    <message>
        <source>The picture %1 cannot be written: %2</source>
        <translation>No se puede escribir la imagen %1: %2</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is no format for pictures; take png or jpg.</source>
        <translation>«%1» no es un formato de imagen; use png o jpg.</translation>
    </message>
</context>
<context>
    <name>Viewer::PreferencesDialog</name>
    <message>
        <source>Preferences</source>
        <translation>Preferencias</translation>
    </message>
    <message>
        <source>No loaded plug-in has preferences.</source>
        <translation>Ninguno de los complementos cargados tiene preferencias.</translation>
    </message>
</context>
<context>
    <name>Viewer::ProjectDialogs</name>
    <message>
        <source>Projects (*%1)</source>
        <translation>Proyectos (*%1)</translation>
    </message>
    <message>
        <source>Open Project</source>
        <translation>Abrir proyecto</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Todos los archivos (*)</translation>
    </message>
    <message>
        <source>Save Project</source>
        <translation>Guardar proyecto</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>Proyecto</translation>
    </message>
    <message>
        <source>The project %1 was changed. Save the changes?</source>
        <translation>El proyecto %1 se ha modificado. ¿Guardar los cambios?</translation>
    </message>
    <message>
        <source>Settings of layers were changed. Save them as a project?</source>
        <translation>Se cambiaron ajustes de capas. ¿Guardarlos como proyecto?</translation>
    </message>
</context>
<context>
    <name>Viewer::PropertiesWindow</name>
    <message>
        <source>Properties of %1</source>
        <translation>Propiedades de %1</translation>
    </message>
</context>
<context>
    <name>Viewer::RecentSources</name>
    <message>
        <source>&amp;Clear List</source>
        <translation>&amp;Vaciar la lista</translation>
    </message>
</context>
<context>
    <name>Viewer::Sources</name>
    <message>
        <source>%1 is a link to a file that does not exist.</source>
        <translation>%1 es un enlace a un archivo que no existe.</translation>
    </message>
    <message>
        <source>%1 does not exist.</source>
        <translation>%1 no existe.</translation>
    </message>
    <message>
        <source>%1 is a folder, not an image.</source>
        <translation>%1 es una carpeta, no una imagen.</translation>
    </message>
    <message>
        <source>%1 is not an ordinary file.</source>
        <translation>%1 no es un archivo normal.</translation>
    </message>
    <message>
        <source>%1 cannot be read: %2.</source>
        <translation>No se puede leer %1: %2.</translation>
    </message>
    <message>
        <source>%1 is empty.</source>
        <translation>%1 está vacío.</translation>
    </message>
</context>
<context>
    <name>Viewer::StatisticsBar</name>
    <message>
        <source>The statistics are an estimate. All cells are being counted: %1 %</source>
        <translation>Las estadísticas son una estimación. Se están contando todas las celdas: %1 %</translation>
    </message>
    <message>
        <source>The statistics are an estimate from a part of the cells.</source>
        <translation>Las estadísticas son una estimación a partir de una parte de las celdas.</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancelar</translation>
    </message>
    <message>
        <source>Count All Cells</source>
        <translation>Contar todas las celdas</translation>
    </message>
</context>
<context>
    <name>Viewer::ValueTexts</name>
    <message>
        <source>no number</source>
        <translation>no es un número</translation>
    </message>
</context>
<context>
    <name>Viewer::ViewCommands</name>
    <message>
        <source>The view did not become complete in time; there is no picture of it.</source>
        <translation>La vista no se completó a tiempo; no hay imagen de ella.</translation>
    </message>
</context>
<context>
    <name>Viewer::ViewStatus</name>
    <message>
        <source>How much of the view is decoded</source>
        <translation>Parte de la vista ya decodificada</translation>
    </message>
    <message>
        <source>World coordinates under the pointer</source>
        <translation>Coordenadas del terreno bajo el puntero</translation>
    </message>
    <message>
        <source>Coordinate system of the active layer</source>
        <translation>Sistema de coordenadas de la capa activa</translation>
    </message>
    <message>
        <source>Screen pixels per cell of the active layer, and world units per screen pixel</source>
        <translation>Píxeles de pantalla por celda de la capa activa y unidades del terreno por píxel de pantalla</translation>
    </message>
    <message>
        <source>Values of the shown bands under the pointer</source>
        <translation>Valores de las bandas mostradas bajo el puntero</translation>
    </message>
</context>
<context>
    <name>Viewer::ViewTexts</name>
    <message>
        <source>X %1  Y %2</source>
        <translation>X %1  Y %2</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>%1 units per pixel</source>
        <translation>%1 unidades por píxel</translation>
    </message>
</context>
</TS>
