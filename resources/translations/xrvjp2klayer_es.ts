<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es" sourcelanguage="en_US">
<context>
    <name>Korvane::XRVJP2kLayer</name>
    <message>
        <source>Unknown</source>
        <translation>Desconocido</translation>
    </message>
    <message>
        <source>Local XRV file</source>
        <translation>Archivo XRV local</translation>
    </message>
    <message>
        <source>Local JPEG 2000 file</source>
        <translation>Archivo JPEG 2000 local</translation>
    </message>
    <message>
        <source>Local file</source>
        <translation>Archivo local</translation>
    </message>
    <message>
        <source>Unknown progression order</source>
        <translation>Orden de progresión desconocido</translation>
    </message>
    <message>
        <source>Could not open URL file.</source>
        <translation>No se pudo abrir el archivo URL.</translation>
    </message>
    <message>
        <source>URL file contains non supported protocol type.</source>
        <translation>El archivo URL contiene un tipo de protocolo no admitido.</translation>
    </message>
    <message>
        <source>JPIP protocol not supported.</source>
        <translation>El protocolo JPIP no es compatible.</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 de %2</translation>
    </message>
    <message>
        <source>Open Stream</source>
        <translation>Abrir flujo</translation>
    </message>
    <message>
        <source>Opening %1 from %2...</source>
        <translation>Abriendo %1 desde %2...</translation>
    </message>
    <message>
        <source>The opening was cancelled.</source>
        <translation>Se canceló la apertura.</translation>
    </message>
    <message>
        <source>Images that reach beyond 2147483647 cells are not supported.</source>
        <translation>No se admiten imágenes que superen las 2147483647 celdas.</translation>
    </message>
    <message>
        <source>JPEG 2000 compound documents are not supported.</source>
        <translation>No se admiten documentos compuestos JPEG 2000.</translation>
    </message>
    <message>
        <source>Motion JPEG 2000 files are not supported.</source>
        <translation>No se admiten archivos Motion JPEG 2000.</translation>
    </message>
    <message>
        <source>The JPEG 2000 codestream ends within its main header.</source>
        <translation>El flujo de códigos JPEG 2000 termina dentro de su cabecera principal.</translation>
    </message>
    <message>
        <source>The XRV file ends before its version.</source>
        <translation>El archivo XRV termina antes de su versión.</translation>
    </message>
    <message>
        <source>The XRV file has no version.</source>
        <translation>El archivo XRV no tiene versión.</translation>
    </message>
    <message>
        <source>The codestream of the XRV file does not hold the cells that the file describes.</source>
        <translation>El flujo de código del archivo XRV no contiene las celdas que el archivo describe.</translation>
    </message>
    <message>
        <source>What the XRV file says of its cells is damaged.</source>
        <translation>Lo que el archivo XRV dice de sus celdas está dañado.</translation>
    </message>
    <message>
        <source>The codestream lies in another file, which is not supported.</source>
        <translation>El flujo de códigos está en otro archivo, lo que no se admite.</translation>
    </message>
    <message>
        <source>The codestream lies in scattered pieces, which is not supported.</source>
        <translation>El flujo de códigos está en trozos dispersos, lo que no se admite.</translation>
    </message>
    <message>
        <source>The file ends before its codestream begins.</source>
        <translation>El archivo termina antes de que empiece su flujo de códigos.</translation>
    </message>
    <message>
        <source>The file has no JPEG 2000 codestream.</source>
        <translation>El archivo no tiene ningún flujo de códigos JPEG 2000.</translation>
    </message>
    <message>
        <source>The file is empty.</source>
        <translation>El archivo está vacío.</translation>
    </message>
    <message>
        <source>The file is not a JPEG 2000 file.</source>
        <translation>El archivo no es un archivo JPEG 2000.</translation>
    </message>
    <message>
        <source>The file is not an XRV image.</source>
        <translation>El archivo no es una imagen XRV.</translation>
    </message>
    <message>
        <source>The fragment table of the codestream is damaged.</source>
        <translation>La tabla de fragmentos del flujo de códigos está dañada.</translation>
    </message>
    <message>
        <source>The server sent a page or a message, not an image.</source>
        <translation>El servidor envió una página o un mensaje, no una imagen.</translation>
    </message>
    <message>
        <source>This file is not an XRV image that this library can read.</source>
        <translation>Este archivo no es una imagen XRV que esta biblioteca pueda leer.</translation>
    </message>
    <message>
        <source>There is no thread to spare for reading values.</source>
        <translation>No queda ningún hilo para leer valores.</translation>
    </message>
</context>
<context>
    <name>XRVJP2LayerMetaDataBox</name>
    <message>
        <source>Metadata</source>
        <translation>Metadatos</translation>
    </message>
    <message>
        <source>Metadata Boxes</source>
        <translation>Cajas de metadatos</translation>
    </message>
    <message>
        <source>Box Id:</source>
        <translation>ID de la caja:</translation>
    </message>
</context>
<context>
    <name>XRVJP2kLayerFileInfo</name>
    <message>
        <source>XRV Info</source>
        <translation>Información XRV</translation>
    </message>
    <message>
        <source>XRV JP2 Compression Info</source>
        <translation>Información de compresión XRV y JP2</translation>
    </message>
    <message>
        <source>XRVP Version:</source>
        <translation>Versión de XRVP:</translation>
    </message>
    <message>
        <source>File Format Version</source>
        <translation>Versión del formato de archivo</translation>
    </message>
    <message>
        <source>GDT Datum:</source>
        <translation>Datum GDT:</translation>
    </message>
    <message>
        <source>GDT Projection:</source>
        <translation>Proyección GDT:</translation>
    </message>
    <message>
        <source>GDT Units:</source>
        <translation>Unidades GDT:</translation>
    </message>
    <message>
        <source>Compressed Size:</source>
        <translation>Tamaño comprimido:</translation>
    </message>
    <message>
        <source>Uncompressed Size:</source>
        <translation>Tamaño sin comprimir:</translation>
    </message>
    <message>
        <source>Target Compression Rate:</source>
        <translation>Tasa de compresión prevista:</translation>
    </message>
    <message>
        <source>Actual Compression Rate:</source>
        <translation>Tasa de compresión real:</translation>
    </message>
    <message>
        <source>Block Size:</source>
        <translation>Tamaño de bloque:</translation>
    </message>
    <message>
        <source>Compression Date:</source>
        <translation>Fecha de compresión:</translation>
    </message>
    <message>
        <source>Classification:</source>
        <translation>Clasificación:</translation>
    </message>
    <message>
        <source>Acquisition Date:</source>
        <translation>Fecha de adquisición:</translation>
    </message>
    <message>
        <source>Acquisition Sensor Name:</source>
        <translation>Nombre del sensor de adquisición:</translation>
    </message>
    <message>
        <source>Compression Software:</source>
        <translation>Software de compresión:</translation>
    </message>
    <message>
        <source>Author:</source>
        <translation>Autor:</translation>
    </message>
    <message>
        <source>Copyright:</source>
        <translation>Copyright:</translation>
    </message>
    <message>
        <source>Company:</source>
        <translation>Empresa:</translation>
    </message>
    <message>
        <source>Email:</source>
        <translation>Correo electrónico:</translation>
    </message>
    <message>
        <source>Address:</source>
        <translation>Dirección:</translation>
    </message>
    <message>
        <source>Telephone:</source>
        <translation>Teléfono:</translation>
    </message>
    <message>
        <source>Copy to Clipboard</source>
        <translation>Copiar al portapapeles</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Desconocido</translation>
    </message>
    <message>
        <source>Not valid for .jp2 files</source>
        <translation>No válido para archivos .jp2</translation>
    </message>
    <message>
        <source>XRVP Version = %1</source>
        <translation>Versión de XRVP = %1</translation>
    </message>
    <message>
        <source>Local file</source>
        <translation>Archivo local</translation>
    </message>
    <message>
        <source>Format Version = %1</source>
        <translation>Versión del formato = %1</translation>
    </message>
    <message>
        <source>GDT Datum = %1</source>
        <translation>Datum GDT = %1</translation>
    </message>
    <message>
        <source>GDT Projection = %1</source>
        <translation>Proyección GDT = %1</translation>
    </message>
    <message>
        <source>GDT Units = %1</source>
        <translation>Unidades GDT = %1</translation>
    </message>
    <message>
        <source>Compressed Size = %1</source>
        <translation>Tamaño comprimido = %1</translation>
    </message>
    <message>
        <source>Uncompressed Size = %1</source>
        <translation>Tamaño sin comprimir = %1</translation>
    </message>
    <message>
        <source>Target Compression Rate = %1:1</source>
        <translation>Tasa de compresión prevista = %1:1</translation>
    </message>
    <message>
        <source>Actual Compression Ratio = %1</source>
        <translation>Relación de compresión real = %1</translation>
    </message>
    <message>
        <source>Compression Date = %1</source>
        <translation>Fecha de compresión = %1</translation>
    </message>
    <message>
        <source>Classification = %1</source>
        <translation>Clasificación = %1</translation>
    </message>
    <message>
        <source>Acquisition Date = %1</source>
        <translation>Fecha de adquisición = %1</translation>
    </message>
    <message>
        <source>Acquisition Sensor Name = %1</source>
        <translation>Nombre del sensor de adquisición = %1</translation>
    </message>
    <message>
        <source>Compression Software = %1</source>
        <translation>Software de compresión = %1</translation>
    </message>
    <message>
        <source>Author = %1</source>
        <translation>Autor = %1</translation>
    </message>
    <message>
        <source>Copyright = %1</source>
        <translation>Copyright = %1</translation>
    </message>
    <message>
        <source>Company = %1</source>
        <translation>Empresa = %1</translation>
    </message>
    <message>
        <source>Email = %1</source>
        <translation>Correo electrónico = %1</translation>
    </message>
    <message>
        <source>Address = %1</source>
        <translation>Dirección = %1</translation>
    </message>
    <message>
        <source>Telephone = %1</source>
        <translation>Teléfono = %1</translation>
    </message>
</context>
<context>
    <name>XRVJP2kLayerJP2FileInfo</name>
    <message>
        <source>JP2 Info</source>
        <translation>Información JP2</translation>
    </message>
    <message>
        <source>JPEG 2000 Header Info</source>
        <translation>Cabecera JPEG 2000</translation>
    </message>
    <message>
        <source>Comments:</source>
        <translation>Comentarios:</translation>
    </message>
    <message>
        <source>Profile:</source>
        <translation>Perfil:</translation>
    </message>
    <message>
        <source>Number of Tiles (X,Y):</source>
        <translation>Número de teselas (X,Y):</translation>
    </message>
    <message>
        <source>Tile Size (X,Y):</source>
        <translation>Tamaño de tesela (X,Y):</translation>
    </message>
    <message>
        <source>Precinct Size X:</source>
        <translation>Tamaño de precinto X:</translation>
    </message>
    <message>
        <source>Precinct Size Y:</source>
        <translation>Tamaño de precinto Y:</translation>
    </message>
    <message>
        <source>Code Block Size (Y,X):</source>
        <translation>Tamaño del bloque de código (Y,X):</translation>
    </message>
    <message>
        <source>Bitdepth:</source>
        <translation>Profundidad de bits:</translation>
    </message>
    <message>
        <source>Resolution Levels:</source>
        <translation>Niveles de resolución:</translation>
    </message>
    <message>
        <source>Quality Layers:</source>
        <translation>Capas de calidad:</translation>
    </message>
    <message>
        <source>Progression Order:</source>
        <translation>Orden de progresión:</translation>
    </message>
    <message>
        <source>Filter:</source>
        <translation>Filtro:</translation>
    </message>
    <message>
        <source>Use Sop:</source>
        <translation>Usa SOP:</translation>
    </message>
    <message>
        <source>Use Eph:</source>
        <translation>Usa EPH:</translation>
    </message>
    <message>
        <source>GML in JP2 Box:</source>
        <translation>Caja GML en JP2:</translation>
    </message>
    <message>
        <source>Copy to Clipboard</source>
        <translation>Copiar al portapapeles</translation>
    </message>
    <message>
        <source>Comments = %1</source>
        <translation>Comentarios = %1</translation>
    </message>
    <message>
        <source>Profile = %1</source>
        <translation>Perfil = %1</translation>
    </message>
    <message>
        <source>Tiles Dimensions (X,Y) = %1 x %2</source>
        <translation>Número de teselas (X,Y) = %1 x %2</translation>
    </message>
    <message>
        <source>Tile Width = %1</source>
        <translation>Ancho de tesela = %1</translation>
    </message>
    <message>
        <source>Tile Height = %1</source>
        <translation>Alto de tesela = %1</translation>
    </message>
    <message>
        <source>Precinct Sizes on X axis = %1</source>
        <translation>Tamaños de precinto en el eje X = %1</translation>
    </message>
    <message>
        <source>Precinct Sizes on Y axis = %1</source>
        <translation>Tamaños de precinto en el eje Y = %1</translation>
    </message>
    <message>
        <source>Code Block Dimensions (X,Y) = %1 x %2</source>
        <translation>Dimensiones del bloque de código (X,Y) = %1 x %2</translation>
    </message>
    <message>
        <source>Band Bit Depths = %1</source>
        <translation>Profundidades de bits de las bandas = %1</translation>
    </message>
    <message>
        <source>Resolution Levels = %1</source>
        <translation>Niveles de resolución = %1</translation>
    </message>
    <message>
        <source>Quality Layers = %1</source>
        <translation>Capas de calidad = %1</translation>
    </message>
    <message>
        <source>Progression Order = %1</source>
        <translation>Orden de progresión = %1</translation>
    </message>
    <message>
        <source>Filter = %1</source>
        <translation>Filtro = %1</translation>
    </message>
    <message>
        <source>SOP Markers = %1</source>
        <translation>Marcadores SOP = %1</translation>
    </message>
    <message>
        <source>EPH Markers = %1</source>
        <translation>Marcadores EPH = %1</translation>
    </message>
    <message>
        <source>GML in JP2 = %1</source>
        <translation>GML en JP2 = %1</translation>
    </message>
</context>
<context>
    <name>XRVJP2kLayerMetaDataBox</name>
    <message>
        <source>Found an XML box, but failed to parse the content.</source>
        <translation>Se encontró una caja XML, pero no se pudo analizar su contenido.</translation>
    </message>
    <message>
        <source>&apos;%1&apos; Box #%2:</source>
        <translation>Caja «%1» n.º %2:</translation>
    </message>
</context>
<context>
    <name>XRVJP2kLayerPlugin</name>
    <message>
        <source>Begin XRV JPEG 2000 Plugin initialization log</source>
        <translation>Inicio del registro de inicialización del complemento XRV JPEG 2000</translation>
    </message>
    <message>
        <source>      XRV Library Version : %1</source>
        <translation>      Versión de la biblioteca XRV: %1</translation>
    </message>
    <message>
        <source>      XRVP local disk cache enabled : %1</source>
        <translation>      Caché de disco XRVP local activada: %1</translation>
    </message>
    <message>
        <source>      XRVP local disk cache dir: %1</source>
        <translation>      Carpeta de la caché de disco XRVP local: %1</translation>
    </message>
    <message>
        <source>      XRVP local disk cache max size (Mb): %1</source>
        <translation>      Tamaño máximo de la caché de disco XRVP local (MB): %1</translation>
    </message>
    <message>
        <source>      XRV apply texture dither: %1</source>
        <translation>      Aplicar tramado de textura XRV: %1</translation>
    </message>
    <message>
        <source>      Cache max mem (Mb): %1</source>
        <translation>      Memoria máxima de la caché (MB): %1</translation>
    </message>
    <message>
        <source>      Use resilient decoding: %1</source>
        <translation>      Usar decodificación tolerante: %1</translation>
    </message>
    <message>
        <source>      Optimize for nearest neighbour resampling: %1</source>
        <translation>      Optimizar para el remuestreo por vecino más próximo: %1</translation>
    </message>
    <message>
        <source>      XRVP HTTP User-Agent: %1</source>
        <translation>      User-Agent HTTP de XRVP: %1</translation>
    </message>
    <message>
        <source>      Using WinHttp (instead of WinInet) for XRVP streaming: %1</source>
        <translation>      Usar WinHttp (en lugar de WinInet) para la transmisión XRVP: %1</translation>
    </message>
    <message>
        <source>      Using %1 (curl abstraction library) instead of winhhtp.dll</source>
        <translation>      Se usa %1 (biblioteca de abstracción de curl) en lugar de winhhtp.dll</translation>
    </message>
    <message>
        <source>End XRV JPEG 2000 Plugin initialization log</source>
        <translation>Fin del registro de inicialización del complemento XRV JPEG 2000</translation>
    </message>
    <message>
        <source>XRV JP2 Error:</source>
        <translation>Error de XRV JP2:</translation>
    </message>
    <message>
        <source>XRV JPEG 2000 Properties</source>
        <translation>Propiedades XRV JPEG 2000</translation>
    </message>
    <message>
        <source>Add XRVP</source>
        <translation>Añadir XRVP</translation>
    </message>
    <message>
        <source>TANNIS XRVP Image Stream</source>
        <translation>Flujo de imágenes XRVP de TANNIS</translation>
    </message>
    <message>
        <source>Open an XRVP stream from an MILTO TANNIS Server</source>
        <translation>Abrir un flujo XRVP desde un servidor MILTO TANNIS</translation>
    </message>
    <message>
        <source>Map View</source>
        <translation>Vista de mapa</translation>
    </message>
    <message>
        <source>Could not get map view from subwindow.</source>
        <translation>No se pudo obtener la vista de mapa de la subventana.</translation>
    </message>
    <message>
        <source>Error adding layer to view.</source>
        <translation>Error al añadir la capa a la vista.</translation>
    </message>
</context>
<context>
    <name>XRVJP2kLayerRPCInfo</name>
    <message>
        <source>RPC Info</source>
        <translation>Información RPC</translation>
    </message>
    <message>
        <source>Rapid Positioning Capability</source>
        <translation>Posicionamiento rápido (RPC)</translation>
    </message>
    <message>
        <source>Error Bias:</source>
        <translation>Error sistemático:</translation>
    </message>
    <message>
        <source>Error Random:</source>
        <translation>Error aleatorio:</translation>
    </message>
    <message>
        <source>Line Offset:</source>
        <translation>Desplazamiento de línea:</translation>
    </message>
    <message>
        <source>Line Scale:</source>
        <translation>Escala de línea:</translation>
    </message>
    <message>
        <source>Latitude Offset:</source>
        <translation>Desplazamiento de latitud:</translation>
    </message>
    <message>
        <source>Latitude Scale:</source>
        <translation>Escala de latitud:</translation>
    </message>
    <message>
        <source>Longitude Offset:</source>
        <translation>Desplazamiento de longitud:</translation>
    </message>
    <message>
        <source>Longitude Scale:</source>
        <translation>Escala de longitud:</translation>
    </message>
    <message>
        <source>Height Offset:</source>
        <translation>Desplazamiento de altura:</translation>
    </message>
    <message>
        <source>Height Scale:</source>
        <translation>Escala de altura:</translation>
    </message>
    <message>
        <source>Sample Offset:</source>
        <translation>Desplazamiento de columna:</translation>
    </message>
    <message>
        <source>Sample Scale:</source>
        <translation>Escala de columna:</translation>
    </message>
    <message>
        <source>Coefficients</source>
        <translation>Coeficientes</translation>
    </message>
    <message>
        <source>Copy to Clipboard</source>
        <translation>Copiar al portapapeles</translation>
    </message>
    <message>
        <source>Line Numerator Coefficients:
</source>
        <translation>Coeficientes del numerador (línea):
</translation>
    </message>
    <message>
        <source>Line Denominator Coefficients:
</source>
        <translation>Coeficientes del denominador (línea):
</translation>
    </message>
    <message>
        <source>Sample Numerator Coefficients:
</source>
        <translation>Coeficientes del numerador (columna):
</translation>
    </message>
    <message>
        <source>Sample Denominator Coefficients:
</source>
        <translation>Coeficientes del denominador (columna):
</translation>
    </message>
    <message>
        <source>Error Bias = %1</source>
        <translation>Error sistemático = %1</translation>
    </message>
    <message>
        <source>Error Random = %1</source>
        <translation>Error aleatorio = %1</translation>
    </message>
    <message>
        <source>Line Offset = %1</source>
        <translation>Desplazamiento de línea = %1</translation>
    </message>
    <message>
        <source>Line Scale = %1</source>
        <translation>Escala de línea = %1</translation>
    </message>
    <message>
        <source>Latitude Offset = %1</source>
        <translation>Desplazamiento de latitud = %1</translation>
    </message>
    <message>
        <source>Latitude Scale = %1</source>
        <translation>Escala de latitud = %1</translation>
    </message>
    <message>
        <source>Longitude Offset = %1</source>
        <translation>Desplazamiento de longitud = %1</translation>
    </message>
    <message>
        <source>Longitude Scale = %1</source>
        <translation>Escala de longitud = %1</translation>
    </message>
    <message>
        <source>Height Offset = %1</source>
        <translation>Desplazamiento de altura = %1</translation>
    </message>
    <message>
        <source>Height Scale = %1</source>
        <translation>Escala de altura = %1</translation>
    </message>
    <message>
        <source>Sample Offset = %1</source>
        <translation>Desplazamiento de columna = %1</translation>
    </message>
    <message>
        <source>Sample Scale = %1</source>
        <translation>Escala de columna = %1</translation>
    </message>
</context>
<context>
    <name>XRVJP2kLayerStatistics</name>
    <message>
        <source>Statistics</source>
        <translation>Estadísticas</translation>
    </message>
    <message>
        <source>Select a Band:</source>
        <translation>Seleccione una banda:</translation>
    </message>
    <message>
        <source>Mode:</source>
        <translation>Moda:</translation>
    </message>
    <message>
        <source>Median:</source>
        <translation>Mediana:</translation>
    </message>
    <message>
        <source>Mean:</source>
        <translation>Media:</translation>
    </message>
    <message>
        <source>Standard Deviation:</source>
        <translation>Desviación estándar:</translation>
    </message>
    <message>
        <source>Minimum Value:</source>
        <translation>Valor mínimo:</translation>
    </message>
    <message>
        <source>Maximum Value:</source>
        <translation>Valor máximo:</translation>
    </message>
    <message>
        <source>Histogram</source>
        <translation>Histograma</translation>
    </message>
    <message>
        <source>Copy to Clipboard</source>
        <translation>Copiar al portapapeles</translation>
    </message>
    <message>
        <source>Band #%1</source>
        <translation>Banda n.º %1</translation>
    </message>
    <message>
        <source>mode = %1</source>
        <translation>moda = %1</translation>
    </message>
    <message>
        <source>median = %1</source>
        <translation>mediana = %1</translation>
    </message>
    <message>
        <source>mean = %1</source>
        <translation>media = %1</translation>
    </message>
    <message>
        <source>stddev = %1</source>
        <translation>desviación estándar = %1</translation>
    </message>
    <message>
        <source>min = %1</source>
        <translation>mín = %1</translation>
    </message>
    <message>
        <source>max = %1</source>
        <translation>máx = %1</translation>
    </message>
    <message>
        <source>Histogram Band #%1 = </source>
        <translation>Histograma de la banda n.º %1 = </translation>
    </message>
</context>
<context>
    <name>XRVJP2kPreferences</name>
    <message>
        <source>Choose XRVP Cache Directory</source>
        <translation>Elegir la carpeta de la caché XRVP</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Error</translation>
    </message>
    <message>
        <source>Directory does not exist!</source>
        <translation>¡La carpeta no existe!</translation>
    </message>
    <message>
        <source>Clearing the XRVP disk cache cannot be undone.

Are you sure you want to clear the disk cache?</source>
        <translation>El vaciado de la caché de disco XRVP no se puede deshacer.

¿Seguro que desea vaciar la caché de disco?</translation>
    </message>
    <message>
        <source>Disk Cache</source>
        <translation>Caché de disco</translation>
    </message>
    <message>
        <source>Not all files could be removed. Close all map views before clearing the cache.</source>
        <translation>No se pudieron eliminar todos los archivos. Cierre todas las vistas de mapa antes de vaciar la caché.</translation>
    </message>
    <message>
        <source>Could not open local XRVP cache folder &apos;%1&apos;.</source>
        <translation>No se pudo abrir la carpeta local de la caché XRVP «%1».</translation>
    </message>
</context>
<context>
    <name>XRVJP2kPreferencesClass</name>
    <message>
        <source>XRV &amp; JP2 Preferences</source>
        <translation>Preferencias de XRV &amp; JP2</translation>
    </message>
    <message>
        <source>Memory Cache</source>
        <translation>Caché de memoria</translation>
    </message>
    <message>
        <source>More memory will increase performance, less will require more disk or network IO. The recommended amount for your machine is &lt;b&gt;${MEMORY}&lt;/b&gt;</source>
        <translation>Más memoria mejora el rendimiento; menos memoria exige más accesos al disco o a la red. La cantidad recomendada para su equipo es &lt;b&gt;${MEMORY}&lt;/b&gt;</translation>
    </message>
    <message>
        <source>0.00 MB</source>
        <translation>0.00 MB</translation>
    </message>
    <message>
        <source>Less memory</source>
        <translation>Menos memoria</translation>
    </message>
    <message>
        <source>Better performance</source>
        <translation>Mejor rendimiento</translation>
    </message>
    <message>
        <source>XRVP Disk Cache</source>
        <translation>Caché de disco XRVP</translation>
    </message>
    <message>
        <source>Location:</source>
        <translation>Ubicación:</translation>
    </message>
    <message>
        <source>Max Cache Size:</source>
        <translation>Tamaño máximo:</translation>
    </message>
    <message>
        <source>500 MB</source>
        <translation>500 MB</translation>
    </message>
    <message>
        <source>Cache Used:</source>
        <translation>Caché en uso:</translation>
    </message>
    <message>
        <source>0 MB</source>
        <translation>0 MB</translation>
    </message>
    <message>
        <source>Clear Disk Cache</source>
        <translation>Vaciar la caché de disco</translation>
    </message>
    <message>
        <source>View Files...</source>
        <translation>Ver archivos...</translation>
    </message>
    <message>
        <source>Default settings for new layers</source>
        <translation>Valores predeterminados para las capas nuevas</translation>
    </message>
    <message>
        <source>%</source>
        <translation>%</translation>
    </message>
    <message>
        <source>Dynamic range adjustment for non 8 bit data</source>
        <translation>Ajuste del rango dinámico para datos que no sean de 8 bits</translation>
    </message>
    <message>
        <source>Open images in progressive mode</source>
        <translation>Abrir las imágenes en modo progresivo</translation>
    </message>
    <message>
        <source>Use bilinear resampling method</source>
        <translation>Usar el remuestreo bilineal</translation>
    </message>
    <message>
        <source>Use adaptive pan/zoom</source>
        <translation>Zoom y desplazamiento adaptativos</translation>
    </message>
    <message>
        <source>Enable texturing when decompressing XRV images</source>
        <translation>Activar el texturizado al descomprimir imágenes XRV</translation>
    </message>
    <message>
        <source>Use resilient  decoding (attempt to decode invalid files)</source>
        <translation>Usar decodificación tolerante (intenta decodificar archivos no válidos)</translation>
    </message>
    <message>
        <source>Use WinHTTP in the XRVP Client</source>
        <translation>Usar WinHTTP en el cliente XRVP</translation>
    </message>
    <message>
        <source>Log SDK messages to application console</source>
        <translation>Registrar los mensajes del SDK en la consola de la aplicación</translation>
    </message>
    <message>
        <source>XRVP HTTP User-Agent:</source>
        <translation>User-Agent HTTP de XRVP:</translation>
    </message>
    <message>
        <source>&lt;i&gt;Note: you must restart to apply these settings.&lt;/i&gt;</source>
        <translation>&lt;i&gt;Nota: debe reiniciar para aplicar estos ajustes.&lt;/i&gt;</translation>
    </message>
    <message>
        <source>Defaults</source>
        <translation>Valores predeterminados</translation>
    </message>
</context>
<context>
    <name>XRVJP2kPropertiesClass</name>
    <message>
        <source>XRVJP2Properties</source>
        <translation>XRVJP2Properties</translation>
    </message>
    <message>
        <source>Transparency</source>
        <translation>Transparencia</translation>
    </message>
    <message>
        <source>Reset to 0% transparency</source>
        <translation>Restablecer la transparencia al 0 %</translation>
    </message>
    <message>
        <source>%</source>
        <translation>%</translation>
    </message>
    <message>
        <source>Contrast</source>
        <translation>Contraste</translation>
    </message>
    <message>
        <source>Reset to 100% contrast</source>
        <translation>Restablecer el contraste al 100 %</translation>
    </message>
    <message>
        <source>Brightness</source>
        <translation>Brillo</translation>
    </message>
    <message>
        <source>Reset to 100% brightness</source>
        <translation>Restablecer el brillo al 100 %</translation>
    </message>
    <message>
        <source>Dynamic Range Adjustment</source>
        <translation>Ajuste del rango dinámico</translation>
    </message>
    <message>
        <source>Reset to default dynamic range</source>
        <translation>Restablecer el rango dinámico predeterminado</translation>
    </message>
    <message>
        <source>JPEG 2000 Quality Layers</source>
        <translation>Capas de calidad JPEG 2000</translation>
    </message>
    <message>
        <source>Reset to max quality layers</source>
        <translation>Restablecer el máximo de capas de calidad</translation>
    </message>
    <message>
        <source>Bands</source>
        <translation>Bandas</translation>
    </message>
    <message>
        <source>Red:</source>
        <translation>Rojo:</translation>
    </message>
    <message>
        <source>Green:</source>
        <translation>Verde:</translation>
    </message>
    <message>
        <source>Blue:</source>
        <translation>Azul:</translation>
    </message>
    <message>
        <source>Opacity:</source>
        <translation>Opacidad:</translation>
    </message>
    <message>
        <source>Display</source>
        <translation>Visualización</translation>
    </message>
    <message>
        <source>Use progressive rendering</source>
        <translation>Usar representación progresiva</translation>
    </message>
    <message>
        <source>Use adaptive pan/zoom</source>
        <translation>Zoom y desplazamiento adaptativos</translation>
    </message>
    <message>
        <source>Use backing store</source>
        <translation>Usar almacén de respaldo</translation>
    </message>
    <message>
        <source>Enable texture/dither (XRV only)</source>
        <translation>Textura/tramado (solo XRV)</translation>
    </message>
    <message>
        <source>Draw outline</source>
        <translation>Dibujar contorno</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>Color</translation>
    </message>
    <message>
        <source>Resample Method:</source>
        <translation>Remuestreo:</translation>
    </message>
    <message>
        <source>Nearest Neighbour</source>
        <translation>Vecino más próximo</translation>
    </message>
    <message>
        <source>Bilinear</source>
        <translation>Bilineal</translation>
    </message>
    <message>
        <source>Advanced</source>
        <translation>Avanzado</translation>
    </message>
    <message>
        <source>Flush memory cache when closing images</source>
        <translation>Vaciar la caché al cerrar</translation>
    </message>
    <message>
        <source>Read Line Method</source>
        <translation>Método de lectura de líneas</translation>
    </message>
    <message>
        <source>ReadLineRGBA</source>
        <translation>ReadLineRGBA</translation>
    </message>
    <message>
        <source>ReadLineBIL</source>
        <translation>ReadLineBIL</translation>
    </message>
</context>
<context>
    <name>XRVJP2kSunshadeClass</name>
    <message>
        <source>XRVJP2kSunshade</source>
        <translation>XRVJP2kSunshade</translation>
    </message>
    <message>
        <source>Hillshade</source>
        <translation>Sombreado</translation>
    </message>
    <message>
        <source>Enable hillshade for layer</source>
        <translation>Activar el sombreado de la capa</translation>
    </message>
    <message>
        <source>Azumith:</source>
        <translation>Acimut:</translation>
    </message>
    <message>
        <source>Elevation:</source>
        <translation>Elevación:</translation>
    </message>
</context>
</TS>
