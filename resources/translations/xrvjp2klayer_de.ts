<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en_US">
<context>
    <name>Korvane::XRVJP2kLayer</name>
    <message>
        <source>Unknown</source>
        <translation>Unbekannt</translation>
    </message>
    <message>
        <source>Local XRV file</source>
        <translation>Lokale XRV-Datei</translation>
    </message>
    <message>
        <source>Local JPEG 2000 file</source>
        <translation>Lokale JPEG 2000-Datei</translation>
    </message>
    <message>
        <source>Local file</source>
        <translation>Lokale Datei</translation>
    </message>
    <message>
        <source>Unknown progression order</source>
        <translation>Unbekannte Progressionsreihenfolge</translation>
    </message>
    <message>
        <source>Could not open URL file.</source>
        <translation>Die URL-Datei konnte nicht geöffnet werden.</translation>
    </message>
    <message>
        <source>URL file contains non supported protocol type.</source>
        <translation>Die URL-Datei enthält einen nicht unterstützten Protokolltyp.</translation>
    </message>
    <message>
        <source>JPIP protocol not supported.</source>
        <translation>Das JPIP-Protokoll wird nicht unterstützt.</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>Open Stream</source>
        <translation>Stream öffnen</translation>
    </message>
    <message>
        <source>Opening %1 from %2...</source>
        <translation>%1 wird von %2 geöffnet...</translation>
    </message>
    <message>
        <source>The opening was cancelled.</source>
        <translation>Das Öffnen wurde abgebrochen.</translation>
    </message>
    <message>
        <source>Images that reach beyond 2147483647 cells are not supported.</source>
        <translation>Bilder, die über 2147483647 Zellen hinausreichen, werden nicht unterstützt.</translation>
    </message>
    <message>
        <source>JPEG 2000 compound documents are not supported.</source>
        <translation>Zusammengesetzte JPEG 2000-Dokumente werden nicht unterstützt.</translation>
    </message>
    <message>
        <source>Motion JPEG 2000 files are not supported.</source>
        <translation>Motion-JPEG 2000-Dateien werden nicht unterstützt.</translation>
    </message>
    <message>
        <source>The JPEG 2000 codestream ends within its main header.</source>
        <translation>Der JPEG 2000-Codestream endet in seinem Hauptkopf.</translation>
    </message>
    <message>
        <source>The XRV file ends before its version.</source>
        <translation>Die XRV-Datei endet vor ihrer Version.</translation>
    </message>
    <message>
        <source>The XRV file has no version.</source>
        <translation>Die XRV-Datei hat keine Version.</translation>
    </message>
    <message>
        <source>The codestream of the XRV file does not hold the cells that the file describes.</source>
        <translation>Der Codestream der XRV-Datei enthält nicht die Zellen, die die Datei beschreibt.</translation>
    </message>
    <message>
        <source>What the XRV file says of its cells is damaged.</source>
        <translation>Was die XRV-Datei über ihre Zellen sagt, ist beschädigt.</translation>
    </message>
    <message>
        <source>The codestream lies in another file, which is not supported.</source>
        <translation>Der Codestream liegt in einer anderen Datei; das wird nicht unterstützt.</translation>
    </message>
    <message>
        <source>The codestream lies in scattered pieces, which is not supported.</source>
        <translation>Der Codestream liegt in verstreuten Stücken; das wird nicht unterstützt.</translation>
    </message>
    <message>
        <source>The file ends before its codestream begins.</source>
        <translation>Die Datei endet, bevor ihr Codestream beginnt.</translation>
    </message>
    <message>
        <source>The file has no JPEG 2000 codestream.</source>
        <translation>Die Datei hat keinen JPEG 2000-Codestream.</translation>
    </message>
    <message>
        <source>The file is empty.</source>
        <translation>Die Datei ist leer.</translation>
    </message>
    <message>
        <source>The file is not a JPEG 2000 file.</source>
        <translation>Die Datei ist keine JPEG 2000-Datei.</translation>
    </message>
    <message>
        <source>The file is not an XRV image.</source>
        <translation>Die Datei ist kein XRV-Bild.</translation>
    </message>
    <message>
        <source>The fragment table of the codestream is damaged.</source>
        <translation>Die Fragmenttabelle des Codestreams ist beschädigt.</translation>
    </message>
    <message>
        <source>The server sent a page or a message, not an image.</source>
        <translation>Der Server hat eine Seite oder eine Meldung geschickt, kein Bild.</translation>
    </message>
    <message>
        <source>This file is not an XRV image that this library can read.</source>
        <translation>Diese Datei ist kein XRV-Bild, das diese Bibliothek lesen kann.</translation>
    </message>
    <message>
        <source>There is no thread to spare for reading values.</source>
        <translation>Zum Lesen von Werten ist kein Thread mehr zu haben.</translation>
    </message>
</context>
<context>
    <name>XRVJP2LayerMetaDataBox</name>
    <message>
        <source>Metadata</source>
        <translation>Metadaten</translation>
    </message>
    <message>
        <source>Metadata Boxes</source>
        <translation>Metadaten-Boxen</translation>
    </message>
    <message>
        <source>Box Id:</source>
        <translation>Box-ID:</translation>
    </message>
</context>
<context>
    <name>XRVJP2kLayerFileInfo</name>
    <message>
        <source>XRV Info</source>
        <translation>XRV-Info</translation>
    </message>
    <message>
        <source>XRV JP2 Compression Info</source>
        <translation>XRV-/JP2-Kompressionsinfo</translation>
    </message>
    <message>
        <source>XRVP Version:</source>
        <translation>XRVP-Version:</translation>
    </message>
    <message>
        <source>File Format Version</source>
        <translation>Version des Dateiformats</translation>
    </message>
    <message>
        <source>GDT Datum:</source>
        <translation>GDT-Datum:</translation>
    </message>
    <message>
        <source>GDT Projection:</source>
        <translation>GDT-Projektion:</translation>
    </message>
    <message>
        <source>GDT Units:</source>
        <translation>GDT-Einheiten:</translation>
    </message>
    <message>
        <source>Compressed Size:</source>
        <translation>Komprimierte Größe:</translation>
    </message>
    <message>
        <source>Uncompressed Size:</source>
        <translation>Unkomprimierte Größe:</translation>
    </message>
    <message>
        <source>Target Compression Rate:</source>
        <translation>Angestrebte Kompressionsrate:</translation>
    </message>
    <message>
        <source>Actual Compression Rate:</source>
        <translation>Tatsächliche Kompressionsrate:</translation>
    </message>
    <message>
        <source>Block Size:</source>
        <translation>Blockgröße:</translation>
    </message>
    <message>
        <source>Compression Date:</source>
        <translation>Komprimierungsdatum:</translation>
    </message>
    <message>
        <source>Classification:</source>
        <translation>Klassifizierung:</translation>
    </message>
    <message>
        <source>Acquisition Date:</source>
        <translation>Aufnahmedatum:</translation>
    </message>
    <message>
        <source>Acquisition Sensor Name:</source>
        <translation>Name des Aufnahmesensors:</translation>
    </message>
    <message>
        <source>Compression Software:</source>
        <translation>Komprimierungssoftware:</translation>
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
        <translation>Firma:</translation>
    </message>
    <message>
        <source>Email:</source>
        <translation>E-Mail:</translation>
    </message>
    <message>
        <source>Address:</source>
        <translation>Adresse:</translation>
    </message>
    <message>
        <source>Telephone:</source>
        <translation>Telefon:</translation>
    </message>
    <message>
        <source>Copy to Clipboard</source>
        <translation>In die Zwischenablage kopieren</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unbekannt</translation>
    </message>
    <message>
        <source>Not valid for .jp2 files</source>
        <translation>Gilt nicht für .jp2-Dateien</translation>
    </message>
    <message>
        <source>XRVP Version = %1</source>
        <translation>XRVP-Version = %1</translation>
    </message>
    <message>
        <source>Local file</source>
        <translation>Lokale Datei</translation>
    </message>
    <message>
        <source>Format Version = %1</source>
        <translation>Version des Formats = %1</translation>
    </message>
    <message>
        <source>GDT Datum = %1</source>
        <translation>GDT-Datum = %1</translation>
    </message>
    <message>
        <source>GDT Projection = %1</source>
        <translation>GDT-Projektion = %1</translation>
    </message>
    <message>
        <source>GDT Units = %1</source>
        <translation>GDT-Einheiten = %1</translation>
    </message>
    <message>
        <source>Compressed Size = %1</source>
        <translation>Komprimierte Größe = %1</translation>
    </message>
    <message>
        <source>Uncompressed Size = %1</source>
        <translation>Unkomprimierte Größe = %1</translation>
    </message>
    <message>
        <source>Target Compression Rate = %1:1</source>
        <translation>Angestrebte Kompressionsrate = %1:1</translation>
    </message>
    <message>
        <source>Actual Compression Ratio = %1</source>
        <translation>Tatsächliches Kompressionsverhältnis = %1</translation>
    </message>
    <message>
        <source>Compression Date = %1</source>
        <translation>Komprimierungsdatum = %1</translation>
    </message>
    <message>
        <source>Classification = %1</source>
        <translation>Klassifizierung = %1</translation>
    </message>
    <message>
        <source>Acquisition Date = %1</source>
        <translation>Aufnahmedatum = %1</translation>
    </message>
    <message>
        <source>Acquisition Sensor Name = %1</source>
        <translation>Name des Aufnahmesensors = %1</translation>
    </message>
    <message>
        <source>Compression Software = %1</source>
        <translation>Komprimierungssoftware = %1</translation>
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
        <translation>Firma = %1</translation>
    </message>
    <message>
        <source>Email = %1</source>
        <translation>E-Mail = %1</translation>
    </message>
    <message>
        <source>Address = %1</source>
        <translation>Adresse = %1</translation>
    </message>
    <message>
        <source>Telephone = %1</source>
        <translation>Telefon = %1</translation>
    </message>
</context>
<context>
    <name>XRVJP2kLayerJP2FileInfo</name>
    <message>
        <source>JP2 Info</source>
        <translation>JP2-Info</translation>
    </message>
    <message>
        <source>JPEG 2000 Header Info</source>
        <translation>JPEG 2000-Header</translation>
    </message>
    <message>
        <source>Comments:</source>
        <translation>Kommentare:</translation>
    </message>
    <message>
        <source>Profile:</source>
        <translation>Profil:</translation>
    </message>
    <message>
        <source>Number of Tiles (X,Y):</source>
        <translation>Anzahl der Kacheln (X,Y):</translation>
    </message>
    <message>
        <source>Tile Size (X,Y):</source>
        <translation>Kachelgröße (X,Y):</translation>
    </message>
    <message>
        <source>Precinct Size X:</source>
        <translation>Precinct-Größe X:</translation>
    </message>
    <message>
        <source>Precinct Size Y:</source>
        <translation>Precinct-Größe Y:</translation>
    </message>
    <message>
        <source>Code Block Size (Y,X):</source>
        <translation>Codeblockgröße (Y,X):</translation>
    </message>
    <message>
        <source>Bitdepth:</source>
        <translation>Bittiefe:</translation>
    </message>
    <message>
        <source>Resolution Levels:</source>
        <translation>Auflösungsstufen:</translation>
    </message>
    <message>
        <source>Quality Layers:</source>
        <translation>Qualitätsebenen:</translation>
    </message>
    <message>
        <source>Progression Order:</source>
        <translation>Progressionsreihenfolge:</translation>
    </message>
    <message>
        <source>Filter:</source>
        <translation>Filter:</translation>
    </message>
    <message>
        <source>Use Sop:</source>
        <translation>SOP verwendet:</translation>
    </message>
    <message>
        <source>Use Eph:</source>
        <translation>EPH verwendet:</translation>
    </message>
    <message>
        <source>GML in JP2 Box:</source>
        <translation>Box für GML in JP2:</translation>
    </message>
    <message>
        <source>Copy to Clipboard</source>
        <translation>In die Zwischenablage kopieren</translation>
    </message>
    <message>
        <source>Comments = %1</source>
        <translation>Kommentare = %1</translation>
    </message>
    <message>
        <source>Profile = %1</source>
        <translation>Profil = %1</translation>
    </message>
    <message>
        <source>Tiles Dimensions (X,Y) = %1 x %2</source>
        <translation>Anzahl der Kacheln (X,Y) = %1 x %2</translation>
    </message>
    <message>
        <source>Tile Width = %1</source>
        <translation>Kachelbreite = %1</translation>
    </message>
    <message>
        <source>Tile Height = %1</source>
        <translation>Kachelhöhe = %1</translation>
    </message>
    <message>
        <source>Precinct Sizes on X axis = %1</source>
        <translation>Precinct-Größen auf der X-Achse = %1</translation>
    </message>
    <message>
        <source>Precinct Sizes on Y axis = %1</source>
        <translation>Precinct-Größen auf der Y-Achse = %1</translation>
    </message>
    <message>
        <source>Code Block Dimensions (X,Y) = %1 x %2</source>
        <translation>Codeblockgröße (X,Y) = %1 x %2</translation>
    </message>
    <message>
        <source>Band Bit Depths = %1</source>
        <translation>Bittiefen der Bänder = %1</translation>
    </message>
    <message>
        <source>Resolution Levels = %1</source>
        <translation>Auflösungsstufen = %1</translation>
    </message>
    <message>
        <source>Quality Layers = %1</source>
        <translation>Qualitätsebenen = %1</translation>
    </message>
    <message>
        <source>Progression Order = %1</source>
        <translation>Progressionsreihenfolge = %1</translation>
    </message>
    <message>
        <source>Filter = %1</source>
        <translation>Filter = %1</translation>
    </message>
    <message>
        <source>SOP Markers = %1</source>
        <translation>SOP-Marker = %1</translation>
    </message>
    <message>
        <source>EPH Markers = %1</source>
        <translation>EPH-Marker = %1</translation>
    </message>
    <message>
        <source>GML in JP2 = %1</source>
        <translation>GML in JP2 = %1</translation>
    </message>
</context>
<context>
    <name>XRVJP2kLayerMetaDataBox</name>
    <message>
        <source>Found an XML box, but failed to parse the content.</source>
        <translation>Eine XML-Box wurde gefunden, ihr Inhalt konnte aber nicht gelesen werden.</translation>
    </message>
    <message>
        <source>&apos;%1&apos; Box #%2:</source>
        <translation>Box „%1“ Nr. %2:</translation>
    </message>
</context>
<context>
    <name>XRVJP2kLayerPlugin</name>
    <message>
        <source>Begin XRV JPEG 2000 Plugin initialization log</source>
        <translation>Beginn des Initialisierungsprotokolls des Plug-ins XRV JPEG 2000</translation>
    </message>
    <message>
        <source>      XRV Library Version : %1</source>
        <translation>      Version der XRV-Bibliothek: %1</translation>
    </message>
    <message>
        <source>      XRVP local disk cache enabled : %1</source>
        <translation>      Lokaler XRVP-Festplattencache aktiviert: %1</translation>
    </message>
    <message>
        <source>      XRVP local disk cache dir: %1</source>
        <translation>      Ordner des lokalen XRVP-Festplattencaches: %1</translation>
    </message>
    <message>
        <source>      XRVP local disk cache max size (Mb): %1</source>
        <translation>      Maximale Größe des lokalen XRVP-Festplattencaches (MB): %1</translation>
    </message>
    <message>
        <source>      XRV apply texture dither: %1</source>
        <translation>      Textur-Dithering für XRV anwenden: %1</translation>
    </message>
    <message>
        <source>      Cache max mem (Mb): %1</source>
        <translation>      Maximaler Cachespeicher (MB): %1</translation>
    </message>
    <message>
        <source>      Use resilient decoding: %1</source>
        <translation>      Fehlertolerantes Dekodieren verwenden: %1</translation>
    </message>
    <message>
        <source>      Optimize for nearest neighbour resampling: %1</source>
        <translation>      Für Resampling mit nächstem Nachbarn optimieren: %1</translation>
    </message>
    <message>
        <source>      XRVP HTTP User-Agent: %1</source>
        <translation>      HTTP-User-Agent für XRVP: %1</translation>
    </message>
    <message>
        <source>      Using WinHttp (instead of WinInet) for XRVP streaming: %1</source>
        <translation>      WinHttp (statt WinInet) für XRVP-Streaming verwenden: %1</translation>
    </message>
    <message>
        <source>      Using %1 (curl abstraction library) instead of winhhtp.dll</source>
        <translation>      %1 (curl-Abstraktionsbibliothek) wird anstelle von winhhtp.dll verwendet</translation>
    </message>
    <message>
        <source>End XRV JPEG 2000 Plugin initialization log</source>
        <translation>Ende des Initialisierungsprotokolls des Plug-ins XRV JPEG 2000</translation>
    </message>
    <message>
        <source>XRV JP2 Error:</source>
        <translation>XRV-JP2-Fehler:</translation>
    </message>
    <message>
        <source>XRV JPEG 2000 Properties</source>
        <translation>XRV JPEG 2000-Eigenschaften</translation>
    </message>
    <message>
        <source>Add XRVP</source>
        <translation>XRVP hinzufügen</translation>
    </message>
    <message>
        <source>TANNIS XRVP Image Stream</source>
        <translation>TANNIS-XRVP-Bildstream</translation>
    </message>
    <message>
        <source>Open an XRVP stream from an MILTO TANNIS Server</source>
        <translation>XRVP-Stream von einem MILTO TANNIS-Server öffnen</translation>
    </message>
    <message>
        <source>Map View</source>
        <translation>Kartenansicht</translation>
    </message>
    <message>
        <source>Could not get map view from subwindow.</source>
        <translation>Das Unterfenster enthält keine Kartenansicht.</translation>
    </message>
    <message>
        <source>Error adding layer to view.</source>
        <translation>Der Layer konnte der Ansicht nicht hinzugefügt werden.</translation>
    </message>
</context>
<context>
    <name>XRVJP2kLayerRPCInfo</name>
    <message>
        <source>RPC Info</source>
        <translation>RPC-Info</translation>
    </message>
    <message>
        <source>Rapid Positioning Capability</source>
        <translation>Schnelle Positionsbestimmung (RPC)</translation>
    </message>
    <message>
        <source>Error Bias:</source>
        <translation>Systematischer Fehler:</translation>
    </message>
    <message>
        <source>Error Random:</source>
        <translation>Zufälliger Fehler:</translation>
    </message>
    <message>
        <source>Line Offset:</source>
        <translation>Zeilenversatz:</translation>
    </message>
    <message>
        <source>Line Scale:</source>
        <translation>Zeilenskalierung:</translation>
    </message>
    <message>
        <source>Latitude Offset:</source>
        <translation>Breitenversatz:</translation>
    </message>
    <message>
        <source>Latitude Scale:</source>
        <translation>Breitenskalierung:</translation>
    </message>
    <message>
        <source>Longitude Offset:</source>
        <translation>Längenversatz:</translation>
    </message>
    <message>
        <source>Longitude Scale:</source>
        <translation>Längenskalierung:</translation>
    </message>
    <message>
        <source>Height Offset:</source>
        <translation>Höhenversatz:</translation>
    </message>
    <message>
        <source>Height Scale:</source>
        <translation>Höhenskalierung:</translation>
    </message>
    <message>
        <source>Sample Offset:</source>
        <translation>Spaltenversatz:</translation>
    </message>
    <message>
        <source>Sample Scale:</source>
        <translation>Spaltenskalierung:</translation>
    </message>
    <message>
        <source>Coefficients</source>
        <translation>Koeffizienten</translation>
    </message>
    <message>
        <source>Copy to Clipboard</source>
        <translation>In die Zwischenablage kopieren</translation>
    </message>
    <message>
        <source>Line Numerator Coefficients:
</source>
        <translation>Zählerkoeffizienten der Zeile:
</translation>
    </message>
    <message>
        <source>Line Denominator Coefficients:
</source>
        <translation>Nennerkoeffizienten der Zeile:
</translation>
    </message>
    <message>
        <source>Sample Numerator Coefficients:
</source>
        <translation>Zählerkoeffizienten der Spalte:
</translation>
    </message>
    <message>
        <source>Sample Denominator Coefficients:
</source>
        <translation>Nennerkoeffizienten der Spalte:
</translation>
    </message>
    <message>
        <source>Error Bias = %1</source>
        <translation>Systematischer Fehler = %1</translation>
    </message>
    <message>
        <source>Error Random = %1</source>
        <translation>Zufälliger Fehler = %1</translation>
    </message>
    <message>
        <source>Line Offset = %1</source>
        <translation>Zeilenversatz = %1</translation>
    </message>
    <message>
        <source>Line Scale = %1</source>
        <translation>Zeilenskalierung = %1</translation>
    </message>
    <message>
        <source>Latitude Offset = %1</source>
        <translation>Breitenversatz = %1</translation>
    </message>
    <message>
        <source>Latitude Scale = %1</source>
        <translation>Breitenskalierung = %1</translation>
    </message>
    <message>
        <source>Longitude Offset = %1</source>
        <translation>Längenversatz = %1</translation>
    </message>
    <message>
        <source>Longitude Scale = %1</source>
        <translation>Längenskalierung = %1</translation>
    </message>
    <message>
        <source>Height Offset = %1</source>
        <translation>Höhenversatz = %1</translation>
    </message>
    <message>
        <source>Height Scale = %1</source>
        <translation>Höhenskalierung = %1</translation>
    </message>
    <message>
        <source>Sample Offset = %1</source>
        <translation>Spaltenversatz = %1</translation>
    </message>
    <message>
        <source>Sample Scale = %1</source>
        <translation>Spaltenskalierung = %1</translation>
    </message>
</context>
<context>
    <name>XRVJP2kLayerStatistics</name>
    <message>
        <source>Statistics</source>
        <translation>Statistik</translation>
    </message>
    <message>
        <source>Select a Band:</source>
        <translation>Band auswählen:</translation>
    </message>
    <message>
        <source>Mode:</source>
        <translation>Modus:</translation>
    </message>
    <message>
        <source>Median:</source>
        <translation>Median:</translation>
    </message>
    <message>
        <source>Mean:</source>
        <translation>Mittelwert:</translation>
    </message>
    <message>
        <source>Standard Deviation:</source>
        <translation>Standardabweichung:</translation>
    </message>
    <message>
        <source>Minimum Value:</source>
        <translation>Kleinster Wert:</translation>
    </message>
    <message>
        <source>Maximum Value:</source>
        <translation>Größter Wert:</translation>
    </message>
    <message>
        <source>Histogram</source>
        <translation>Histogramm</translation>
    </message>
    <message>
        <source>Copy to Clipboard</source>
        <translation>In die Zwischenablage kopieren</translation>
    </message>
    <message>
        <source>Band #%1</source>
        <translation>Band Nr. %1</translation>
    </message>
    <message>
        <source>mode = %1</source>
        <translation>Modus = %1</translation>
    </message>
    <message>
        <source>median = %1</source>
        <translation>Median = %1</translation>
    </message>
    <message>
        <source>mean = %1</source>
        <translation>Mittelwert = %1</translation>
    </message>
    <message>
        <source>stddev = %1</source>
        <translation>Standardabweichung = %1</translation>
    </message>
    <message>
        <source>min = %1</source>
        <translation>Minimum = %1</translation>
    </message>
    <message>
        <source>max = %1</source>
        <translation>Maximum = %1</translation>
    </message>
    <message>
        <source>Histogram Band #%1 = </source>
        <translation>Histogramm Band Nr. %1 = </translation>
    </message>
</context>
<context>
    <name>XRVJP2kPreferences</name>
    <message>
        <source>Choose XRVP Cache Directory</source>
        <translation>Ordner für den XRVP-Cache wählen</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>Directory does not exist!</source>
        <translation>Der Ordner ist nicht vorhanden!</translation>
    </message>
    <message>
        <source>Clearing the XRVP disk cache cannot be undone.

Are you sure you want to clear the disk cache?</source>
        <translation>Das Leeren des XRVP-Festplattencaches lässt sich nicht rückgängig machen.

Möchten Sie den Festplattencache wirklich leeren?</translation>
    </message>
    <message>
        <source>Disk Cache</source>
        <translation>Festplattencache</translation>
    </message>
    <message>
        <source>Not all files could be removed. Close all map views before clearing the cache.</source>
        <translation>Nicht alle Dateien konnten entfernt werden. Schließen Sie alle Kartenansichten, bevor Sie den Cache leeren.</translation>
    </message>
    <message>
        <source>Could not open local XRVP cache folder &apos;%1&apos;.</source>
        <translation>Der lokale XRVP-Cacheordner „%1“ konnte nicht geöffnet werden.</translation>
    </message>
</context>
<context>
    <name>XRVJP2kPreferencesClass</name>
    <message>
        <source>XRV &amp; JP2 Preferences</source>
        <translation>XRV- &amp; JP2-Einstellungen</translation>
    </message>
    <message>
        <source>Memory Cache</source>
        <translation>Speichercache</translation>
    </message>
    <message>
        <source>More memory will increase performance, less will require more disk or network IO. The recommended amount for your machine is &lt;b&gt;${MEMORY}&lt;/b&gt;</source>
        <translation>Mehr Speicher erhöht die Leistung, weniger erfordert mehr Festplatten- oder Netzwerkzugriffe. Für Ihren Rechner werden &lt;b&gt;${MEMORY}&lt;/b&gt; empfohlen</translation>
    </message>
    <message>
        <source>0.00 MB</source>
        <translation>0.00 MB</translation>
    </message>
    <message>
        <source>Less memory</source>
        <translation>Weniger Speicher</translation>
    </message>
    <message>
        <source>Better performance</source>
        <translation>Bessere Leistung</translation>
    </message>
    <message>
        <source>XRVP Disk Cache</source>
        <translation>XRVP-Festplattencache</translation>
    </message>
    <message>
        <source>Location:</source>
        <translation>Speicherort:</translation>
    </message>
    <message>
        <source>Max Cache Size:</source>
        <translation>Maximale Cachegröße:</translation>
    </message>
    <message>
        <source>500 MB</source>
        <translation>500 MB</translation>
    </message>
    <message>
        <source>Cache Used:</source>
        <translation>Cache belegt:</translation>
    </message>
    <message>
        <source>0 MB</source>
        <translation>0 MB</translation>
    </message>
    <message>
        <source>Clear Disk Cache</source>
        <translation>Festplattencache leeren</translation>
    </message>
    <message>
        <source>View Files...</source>
        <translation>Dateien anzeigen...</translation>
    </message>
    <message>
        <source>Default settings for new layers</source>
        <translation>Standardeinstellungen für neue Layer</translation>
    </message>
    <message>
        <source>%</source>
        <translation>%</translation>
    </message>
    <message>
        <source>Dynamic range adjustment for non 8 bit data</source>
        <translation>Dynamikanpassung für Daten, die nicht 8 Bit haben</translation>
    </message>
    <message>
        <source>Open images in progressive mode</source>
        <translation>Bilder im progressiven Modus öffnen</translation>
    </message>
    <message>
        <source>Use bilinear resampling method</source>
        <translation>Bilineare Resampling-Methode verwenden</translation>
    </message>
    <message>
        <source>Use adaptive pan/zoom</source>
        <translation>Adaptiv verschieben und zoomen</translation>
    </message>
    <message>
        <source>Enable texturing when decompressing XRV images</source>
        <translation>Texturierung beim Dekomprimieren von XRV-Bildern aktivieren</translation>
    </message>
    <message>
        <source>Use resilient  decoding (attempt to decode invalid files)</source>
        <translation>Fehlertolerantes Dekodieren (versucht, ungültige Dateien zu dekodieren)</translation>
    </message>
    <message>
        <source>Use WinHTTP in the XRVP Client</source>
        <translation>WinHTTP im XRVP-Client verwenden</translation>
    </message>
    <message>
        <source>Log SDK messages to application console</source>
        <translation>SDK-Meldungen in der Anwendungskonsole protokollieren</translation>
    </message>
    <message>
        <source>XRVP HTTP User-Agent:</source>
        <translation>HTTP-User-Agent für XRVP:</translation>
    </message>
    <message>
        <source>&lt;i&gt;Note: you must restart to apply these settings.&lt;/i&gt;</source>
        <translation>&lt;i&gt;Hinweis: Diese Einstellungen werden erst nach einem Neustart wirksam.&lt;/i&gt;</translation>
    </message>
    <message>
        <source>Defaults</source>
        <translation>Standardwerte</translation>
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
        <translation>Transparenz</translation>
    </message>
    <message>
        <source>Reset to 0% transparency</source>
        <translation>Transparenz auf 0 % zurücksetzen</translation>
    </message>
    <message>
        <source>%</source>
        <translation>%</translation>
    </message>
    <message>
        <source>Contrast</source>
        <translation>Kontrast</translation>
    </message>
    <message>
        <source>Reset to 100% contrast</source>
        <translation>Kontrast auf 100 % zurücksetzen</translation>
    </message>
    <message>
        <source>Brightness</source>
        <translation>Helligkeit</translation>
    </message>
    <message>
        <source>Reset to 100% brightness</source>
        <translation>Helligkeit auf 100 % zurücksetzen</translation>
    </message>
    <message>
        <source>Dynamic Range Adjustment</source>
        <translation>Dynamikanpassung</translation>
    </message>
    <message>
        <source>Reset to default dynamic range</source>
        <translation>Dynamikbereich auf den Standardwert zurücksetzen</translation>
    </message>
    <message>
        <source>JPEG 2000 Quality Layers</source>
        <translation>JPEG 2000-Qualitätsebenen</translation>
    </message>
    <message>
        <source>Reset to max quality layers</source>
        <translation>Auf die höchste Zahl der Qualitätsebenen zurücksetzen</translation>
    </message>
    <message>
        <source>Bands</source>
        <translation>Bänder</translation>
    </message>
    <message>
        <source>Red:</source>
        <translation>Rot:</translation>
    </message>
    <message>
        <source>Green:</source>
        <translation>Grün:</translation>
    </message>
    <message>
        <source>Blue:</source>
        <translation>Blau:</translation>
    </message>
    <message>
        <source>Opacity:</source>
        <translation>Deckkraft:</translation>
    </message>
    <message>
        <source>Display</source>
        <translation>Darstellung</translation>
    </message>
    <message>
        <source>Use progressive rendering</source>
        <translation>Progressiv darstellen</translation>
    </message>
    <message>
        <source>Use adaptive pan/zoom</source>
        <translation>Adaptiv verschieben und zoomen</translation>
    </message>
    <message>
        <source>Use backing store</source>
        <translation>Hintergrundspeicher verwenden</translation>
    </message>
    <message>
        <source>Enable texture/dither (XRV only)</source>
        <translation>Textur/Dithering (nur XRV)</translation>
    </message>
    <message>
        <source>Draw outline</source>
        <translation>Umriss zeichnen</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>Farbe</translation>
    </message>
    <message>
        <source>Resample Method:</source>
        <translation>Resampling:</translation>
    </message>
    <message>
        <source>Nearest Neighbour</source>
        <translation>Nächster Nachbar</translation>
    </message>
    <message>
        <source>Bilinear</source>
        <translation>Bilinear</translation>
    </message>
    <message>
        <source>Advanced</source>
        <translation>Erweitert</translation>
    </message>
    <message>
        <source>Flush memory cache when closing images</source>
        <translation>Speichercache beim Schließen leeren</translation>
    </message>
    <message>
        <source>Read Line Method</source>
        <translation>Zeilenlesemethode</translation>
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
        <translation>Schummerung</translation>
    </message>
    <message>
        <source>Enable hillshade for layer</source>
        <translation>Schummerung für den Layer aktivieren</translation>
    </message>
    <message>
        <source>Azumith:</source>
        <translation>Azimut:</translation>
    </message>
    <message>
        <source>Elevation:</source>
        <translation>Höhenwinkel:</translation>
    </message>
</context>
</TS>
