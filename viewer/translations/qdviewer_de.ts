<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en_US">
<context>
    <name>AboutBox</name>
    <message>
        <source>Shows very large wavelet-compressed images from files and image servers.</source>
        <translation>Zeigt sehr große waveletkomprimierte Bilder aus Dateien und von Bildservern an.</translation>
    </message>
    <message>
        <source>No layer plug-in is loaded.</source>
        <translation>Es ist kein Layer-Plug-in geladen.</translation>
    </message>
    <message>
        <source>Plug-ins:</source>
        <translation>Plug-ins:</translation>
    </message>
    <message>
        <source>About %1</source>
        <translation>Über %1</translation>
    </message>
</context>
<context>
    <name>FailureReport</name>
    <message numerus="yes">
        <source>%1 of %n sources could not be opened.</source>
        <translation>
            <numerusform>%1 von %n Quelle konnte nicht geöffnet werden.</numerusform>
            <numerusform>%1 von %n Quellen konnten nicht geöffnet werden.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>... and %n more (see the details)</source>
        <translation>
            <numerusform>... und %n weitere (siehe Details)</numerusform>
            <numerusform>... und %n weitere (siehe Details)</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>LayerOpener</name>
    <message>
        <source>%1 cannot be opened: no layer plug-in is loaded. %2</source>
        <translation>%1 kann nicht geöffnet werden: Es ist kein Layer-Plug-in geladen. %2</translation>
    </message>
    <message>
        <source>the format is not known</source>
        <translation>Das Format ist unbekannt</translation>
    </message>
    <message>
        <source>%1 cannot be opened: %2</source>
        <translation>%1 kann nicht geöffnet werden: %2</translation>
    </message>
</context>
<context>
    <name>ProjectReader</name>
    <message>
        <source>The project %1 cannot be read: %2.</source>
        <translation>Das Projekt %1 kann nicht gelesen werden: %2.</translation>
    </message>
    <message>
        <source>%1 is too large to be a project.</source>
        <translation>%1 ist zu groß für ein Projekt.</translation>
    </message>
    <message>
        <source>%1 is not a project: %2 in line %3, column %4.</source>
        <translation>%1 ist kein Projekt: %2 in Zeile %3, Spalte %4.</translation>
    </message>
    <message>
        <source>%1 is an XML file, but not a project.</source>
        <translation>%1 ist eine XML-Datei, aber kein Projekt.</translation>
    </message>
    <message>
        <source>The project %1 does not tell its version.</source>
        <translation>Das Projekt %1 nennt seine Version nicht.</translation>
    </message>
    <message>
        <source>The project %1 was written by a newer version of this program.</source>
        <translation>Das Projekt %1 wurde von einer neueren Version dieses Programms geschrieben.</translation>
    </message>
    <message>
        <source>A view has no valid extent and is shown whole.</source>
        <translation>Eine Ansicht hat keine gültige Ausdehnung und wird ganz angezeigt.</translation>
    </message>
    <message>
        <source>A layer of the project does not tell its kind.</source>
        <translation>Bei einem Layer des Projekts fehlt die Angabe seiner Art.</translation>
    </message>
    <message>
        <source>No loaded plug-in makes layers of the kind %1.</source>
        <translation>Kein geladenes Plug-in erzeugt Layer der Art %1.</translation>
    </message>
    <message>
        <source>A layer of the kind %1 cannot be restored.</source>
        <translation>Ein Layer der Art %1 kann nicht wiederhergestellt werden.</translation>
    </message>
    <message>
        <source>%1 is too large to be a project: it has more than %2 elements and attributes, or more than %3 levels of them.</source>
        <translation>%1 ist zu groß für ein Projekt: Es hat mehr als %2 Elemente und Attribute oder mehr als %3 Ebenen davon.</translation>
    </message>
</context>
<context>
    <name>ProjectWriter</name>
    <message>
        <source>%1 cannot be written: %2</source>
        <translation>%1 kann nicht geschrieben werden: %2</translation>
    </message>
</context>
<context>
    <name>Viewer</name>
    <message>
        <source>No layer plug-in was found in %1.</source>
        <translation>In %1 wurde kein Layer-Plug-in gefunden.</translation>
    </message>
</context>
<context>
    <name>Viewer::Geographic</name>
    <message>
        <source>%1° W</source>
        <translation>%1° W</translation>
    </message>
    <message>
        <source>%1° E</source>
        <translation>%1° O</translation>
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
        <translation>Abfrage</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>Click on the map to see what lies there.</source>
        <translation>Auf die Karte klicken, um zu sehen, was dort liegt.</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>Place</source>
        <translation>Ort</translation>
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
        <translation>wird gelesen...</translation>
    </message>
    <message>
        <source>lies elsewhere</source>
        <translation>liegt woanders</translation>
    </message>
    <message>
        <source>Column, row</source>
        <translation>Spalte, Zeile</translation>
    </message>
    <message>
        <source>Band %1</source>
        <translation>Kanal %1</translation>
    </message>
    <message>
        <source>Longitude</source>
        <translation>Länge</translation>
    </message>
    <message>
        <source>Latitude</source>
        <translation>Breite</translation>
    </message>
</context>
<context>
    <name>Viewer::LayerListDock</name>
    <message>
        <source>Layers</source>
        <translation>Layer</translation>
    </message>
    <message>
        <source>&amp;Zoom to Layer</source>
        <translation>Auf Layer &amp;zoomen</translation>
    </message>
    <message>
        <source>Show all of this layer</source>
        <translation>Diesen Layer ganz anzeigen</translation>
    </message>
    <message>
        <source>Zoom to &amp;1:1</source>
        <translation>Auf &amp;1:1 zoomen</translation>
    </message>
    <message>
        <source>Show this layer with one cell per pixel</source>
        <translation>Diesen Layer mit einer Zelle pro Pixel anzeigen</translation>
    </message>
    <message>
        <source>Move &amp;Up</source>
        <translation>Nach &amp;oben</translation>
    </message>
    <message>
        <source>Move the layer up</source>
        <translation>Layer nach oben verschieben</translation>
    </message>
    <message>
        <source>Move &amp;Down</source>
        <translation>Nach &amp;unten</translation>
    </message>
    <message>
        <source>Move the layer down</source>
        <translation>Layer nach unten verschieben</translation>
    </message>
    <message>
        <source>Move to &amp;Top</source>
        <translation>&amp;Ganz nach oben</translation>
    </message>
    <message>
        <source>Move to &amp;Bottom</source>
        <translation>G&amp;anz nach unten</translation>
    </message>
    <message>
        <source>Re&amp;name</source>
        <translation>U&amp;mbenennen</translation>
    </message>
    <message>
        <source>&amp;Copy File Name or Address</source>
        <translation>Dateinamen oder Adresse &amp;kopieren</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>&amp;Entfernen</translation>
    </message>
    <message>
        <source>Remove the layer from the view</source>
        <translation>Layer aus der Ansicht entfernen</translation>
    </message>
    <message>
        <source>&amp;Properties...</source>
        <translation>E&amp;igenschaften...</translation>
    </message>
    <message>
        <source>What is known of this layer</source>
        <translation>Angaben zu diesem Layer</translation>
    </message>
</context>
<context>
    <name>Viewer::LayerListModel</name>
    <message>
        <source>%1 × %2 cells</source>
        <translation>%1 × %2 Zellen</translation>
    </message>
</context>
<context>
    <name>Viewer::LayerSummaryPage</name>
    <message>
        <source>General</source>
        <translation>Allgemein</translation>
    </message>
    <message>
        <source>Source:</source>
        <translation>Quelle:</translation>
    </message>
    <message>
        <source>Format:</source>
        <translation>Format:</translation>
    </message>
    <message>
        <source>Access:</source>
        <translation>Zugriff:</translation>
    </message>
    <message>
        <source>Coordinate system:</source>
        <translation>Koordinatensystem:</translation>
    </message>
    <message>
        <source>First corner:</source>
        <translation>Erste Ecke:</translation>
    </message>
    <message>
        <source>Opposite corner:</source>
        <translation>Gegenüberliegende Ecke:</translation>
    </message>
    <message>
        <source>Comments:</source>
        <translation>Kommentare:</translation>
    </message>
    <message>
        <source>Size in cells:</source>
        <translation>Größe in Zellen:</translation>
    </message>
    <message>
        <source>Cell size:</source>
        <translation>Zellgröße:</translation>
    </message>
    <message>
        <source>Cell type:</source>
        <translation>Zelltyp:</translation>
    </message>
    <message>
        <source>Bands:</source>
        <translation>Bänder:</translation>
    </message>
    <message>
        <source>Rotation:</source>
        <translation>Drehung:</translation>
    </message>
    <message>
        <source>%1° clockwise</source>
        <translation>%1° im Uhrzeigersinn</translation>
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
        <translation>Protokoll</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>Copies the selected lines, or all that are shown</source>
        <translation>Kopiert die ausgewählten oder alle angezeigten Zeilen</translation>
    </message>
    <message>
        <source>C&amp;lear</source>
        <translation>&amp;Leeren</translation>
    </message>
    <message>
        <source>The least severe messages that are shown, and logged from now on</source>
        <translation>Die am wenigsten schwerwiegenden Meldungen, die angezeigt und ab jetzt protokolliert werden</translation>
    </message>
    <message>
        <source>Fro&amp;m level:</source>
        <translation>A&amp;b Stufe:</translation>
    </message>
</context>
<context>
    <name>Viewer::LogModel</name>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Level</source>
        <translation>Stufe</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Meldung</translation>
    </message>
</context>
<context>
    <name>Viewer::MainActions</name>
    <message>
        <source>&amp;Open...</source>
        <translation>&amp;Öffnen...</translation>
    </message>
    <message>
        <source>Open images in the current view</source>
        <translation>Bilder in der aktuellen Ansicht öffnen</translation>
    </message>
    <message>
        <source>Open in Ne&amp;w View...</source>
        <translation>In &amp;neuer Ansicht öffnen...</translation>
    </message>
    <message>
        <source>Open images in a view of their own</source>
        <translation>Bilder in einer eigenen Ansicht öffnen</translation>
    </message>
    <message>
        <source>&amp;New View</source>
        <translation>&amp;Neue Ansicht</translation>
    </message>
    <message>
        <source>Add an empty map view</source>
        <translation>Eine leere Kartenansicht hinzufügen</translation>
    </message>
    <message>
        <source>Open &amp;Project...</source>
        <translation>&amp;Projekt öffnen...</translation>
    </message>
    <message>
        <source>Replace all views by those of a project</source>
        <translation>Alle Ansichten durch die eines Projekts ersetzen</translation>
    </message>
    <message>
        <source>&amp;Save Project</source>
        <translation>Projekt &amp;speichern</translation>
    </message>
    <message>
        <source>Save all views and their layers</source>
        <translation>Alle Ansichten und ihre Layer speichern</translation>
    </message>
    <message>
        <source>Save Project &amp;As...</source>
        <translation>Projekt speichern &amp;unter...</translation>
    </message>
    <message>
        <source>Save all views and their layers in another file</source>
        <translation>Alle Ansichten und ihre Layer in einer anderen Datei speichern</translation>
    </message>
    <message>
        <source>Save P&amp;icture...</source>
        <translation>Bil&amp;d speichern...</translation>
    </message>
    <message>
        <source>Save what the current view shows as a picture</source>
        <translation>Den Inhalt der aktuellen Ansicht als Bild speichern</translation>
    </message>
    <message>
        <source>Pre&amp;ferences...</source>
        <translation>&amp;Einstellungen...</translation>
    </message>
    <message>
        <source>Settings of the plug-ins</source>
        <translation>Einstellungen der Plug-ins</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>About &amp;Qt</source>
        <translation>Über &amp;Qt</translation>
    </message>
    <message>
        <source>Zoom &amp;In</source>
        <translation>Ver&amp;größern</translation>
    </message>
    <message>
        <source>Show the map larger</source>
        <translation>Karte größer anzeigen</translation>
    </message>
    <message>
        <source>Zoom &amp;Out</source>
        <translation>Ver&amp;kleinern</translation>
    </message>
    <message>
        <source>Show the map smaller</source>
        <translation>Karte kleiner anzeigen</translation>
    </message>
    <message>
        <source>Zoom to &amp;All</source>
        <translation>Auf &amp;alles zoomen</translation>
    </message>
    <message>
        <source>Show all layers of the view</source>
        <translation>Alle Layer der Ansicht anzeigen</translation>
    </message>
    <message>
        <source>Zoom to &amp;Layer</source>
        <translation>Auf &amp;Layer zoomen</translation>
    </message>
    <message>
        <source>Show all of the selected layer</source>
        <translation>Den ausgewählten Layer ganz anzeigen</translation>
    </message>
    <message>
        <source>Zoom to &amp;1:1</source>
        <translation>Auf &amp;1:1 zoomen</translation>
    </message>
    <message>
        <source>Show one cell of the selected layer per pixel</source>
        <translation>Eine Zelle des ausgewählten Layers pro Pixel anzeigen</translation>
    </message>
    <message>
        <source>Layer &amp;Properties...</source>
        <translation>Layer-&amp;Eigenschaften...</translation>
    </message>
    <message>
        <source>What is known of the selected layer</source>
        <translation>Angaben zum ausgewählten Layer</translation>
    </message>
    <message>
        <source>&amp;Tabs</source>
        <translation>&amp;Registerkarten</translation>
    </message>
    <message>
        <source>Show one view at a time, in tabs</source>
        <translation>Die Ansichten einzeln in Registerkarten anzeigen</translation>
    </message>
    <message>
        <source>&amp;Cascade</source>
        <translation>&amp;Überlappend</translation>
    </message>
    <message>
        <source>Show the views as windows, one behind the other</source>
        <translation>Die Ansichten als Fenster hintereinander anzeigen</translation>
    </message>
    <message>
        <source>T&amp;ile</source>
        <translation>Neben&amp;einander</translation>
    </message>
    <message>
        <source>Show the views as windows, side by side</source>
        <translation>Die Ansichten als Fenster nebeneinander anzeigen</translation>
    </message>
    <message>
        <source>Ne&amp;xt View</source>
        <translation>Nä&amp;chste Ansicht</translation>
    </message>
    <message>
        <source>&amp;Rename View...</source>
        <translation>Ansicht &amp;umbenennen...</translation>
    </message>
    <message>
        <source>Cl&amp;ose View</source>
        <translation>Ansicht &amp;schließen</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>&amp;Window</source>
        <translation>&amp;Fenster</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation>&amp;Zuletzt geöffnet</translation>
    </message>
    <message>
        <source>Open Recent Pro&amp;ject</source>
        <translation>Zuletzt geöffnete P&amp;rojekte</translation>
    </message>
    <message>
        <source>Main</source>
        <translation>Hauptwerkzeugleiste</translation>
    </message>
    <message>
        <source>&amp;About %1</source>
        <translation>Ü&amp;ber %1</translation>
    </message>
    <message>
        <source>&amp;Copy Picture</source>
        <translation>Bild &amp;kopieren</translation>
    </message>
    <message>
        <source>Put what the current view shows into the clipboard</source>
        <translation>Was die aktuelle Ansicht zeigt, in die Zwischenablage legen</translation>
    </message>
    <message>
        <source>&amp;Full Screen</source>
        <translation>&amp;Vollbild</translation>
    </message>
    <message>
        <source>Fill the screen with the window</source>
        <translation>Den Bildschirm mit dem Fenster füllen</translation>
    </message>
    <message>
        <source>Next &amp;Panel</source>
        <translation>Nächster &amp;Bereich</translation>
    </message>
    <message>
        <source>Give the keyboard to the next panel</source>
        <translation>Die Tastatur dem nächsten Bereich geben</translation>
    </message>
    <message>
        <source>Pre&amp;vious Panel</source>
        <translation>&amp;Voriger Bereich</translation>
    </message>
    <message>
        <source>Give the keyboard to the panel before</source>
        <translation>Die Tastatur dem vorigen Bereich geben</translation>
    </message>
    <message>
        <source>&amp;Back</source>
        <translation>&amp;Zurück</translation>
    </message>
    <message>
        <source>Show what the view showed before</source>
        <translation>Zeigen, was die Ansicht vorher zeigte</translation>
    </message>
    <message>
        <source>Fo&amp;rward</source>
        <translation>Vo&amp;rwärts</translation>
    </message>
    <message>
        <source>Show what the view showed before going back</source>
        <translation>Zeigen, was die Ansicht vor dem Zurückgehen zeigte</translation>
    </message>
    <message>
        <source>&amp;Go to Coordinates...</source>
        <translation>Gehe zu Koor&amp;dinaten...</translation>
    </message>
    <message>
        <source>Show a place in the middle of the view</source>
        <translation>Einen Ort in der Mitte der Ansicht zeigen</translation>
    </message>
</context>
<context>
    <name>Viewer::MainWindow</name>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Open in New View</source>
        <translation>In neuer Ansicht öffnen</translation>
    </message>
    <message>
        <source>%1 cannot be shown.</source>
        <translation>%1 kann nicht angezeigt werden.</translation>
    </message>
    <message>
        <source>Save Picture</source>
        <translation>Bild speichern</translation>
    </message>
    <message>
        <source>PNG images (*.png)</source>
        <translation>PNG-Bilder (*.png)</translation>
    </message>
    <message>
        <source>Rename View</source>
        <translation>Ansicht umbenennen</translation>
    </message>
    <message>
        <source>Title (empty: the layer&apos;s name):</source>
        <translation>Titel (leer: Name des Layers):</translation>
    </message>
    <message>
        <source>JPEG images (*.jpg *.jpeg)</source>
        <translation>JPEG-Bilder (*.jpg *.jpeg)</translation>
    </message>
    <message>
        <source>Go to Coordinates</source>
        <translation>Gehe zu Koordinaten</translation>
    </message>
    <message>
        <source>X and Y, or latitude and longitude, such as 46.72 N 9.92 E:</source>
        <translation>X und Y, oder Breite und Länge wie 46.72 N 9.92 E:</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is no place that can be shown here.</source>
        <translation>„%1“ ist kein Ort, der hier gezeigt werden kann.</translation>
    </message>
</context>
<context>
    <name>Viewer::MapArea</name>
    <message>
        <source>View %1</source>
        <translation>Ansicht %1</translation>
    </message>
</context>
<context>
    <name>Viewer::MapMenu</name>
    <message>
        <source>&amp;What Is Here?</source>
        <translation>&amp;Was ist hier?</translation>
    </message>
    <message>
        <source>&amp;Copy Coordinates %1</source>
        <translation>&amp;Koordinaten %1 kopieren</translation>
    </message>
    <message>
        <source>C&amp;entre Here</source>
        <translation>&amp;Hier zentrieren</translation>
    </message>
</context>
<context>
    <name>Viewer::MapNotices</name>
    <message>
        <source>%1 lies outside the view.</source>
        <translation>%1 liegt außerhalb der Ansicht.</translation>
    </message>
    <message>
        <source>Zoom to Layer</source>
        <translation>Auf Ebene zoomen</translation>
    </message>
    <message>
        <source>%1 is damaged and shown as well as can be: %2</source>
        <translation>%1 ist beschädigt und wird so gut wie möglich gezeigt: %2</translation>
    </message>
    <message>
        <source>The connection is lost: %1</source>
        <translation>Die Verbindung ist verloren: %1</translation>
    </message>
    <message>
        <source>Reconnect</source>
        <translation>Neu verbinden</translation>
    </message>
    <message>
        <source>Open Again</source>
        <translation>Erneut öffnen</translation>
    </message>
    <message>
        <source>Hide this message</source>
        <translation>Diese Meldung ausblenden</translation>
    </message>
</context>
<context>
    <name>Viewer::Pictures</name>
    <message>
        <source>The picture %1 cannot be written: %2</source>
        <translation>Das Bild %1 kann nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is no format for pictures; take png or jpg.</source>
        <translation>„%1“ ist kein Format für Bilder; png oder jpg geht.</translation>
    </message>
</context>
<context>
    <name>Viewer::PreferencesDialog</name>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>No loaded plug-in has preferences.</source>
        <translation>Keines der geladenen Plug-ins hat Einstellungen.</translation>
    </message>
</context>
<context>
    <name>Viewer::ProjectDialogs</name>
    <message>
        <source>Projects (*%1)</source>
        <translation>Projekte (*%1)</translation>
    </message>
    <message>
        <source>Open Project</source>
        <translation>Projekt öffnen</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Save Project</source>
        <translation>Projekt speichern</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>Projekt</translation>
    </message>
    <message>
        <source>The project %1 was changed. Save the changes?</source>
        <translation>Das Projekt %1 wurde geändert. Sollen die Änderungen gespeichert werden?</translation>
    </message>
    <message>
        <source>Settings of layers were changed. Save them as a project?</source>
        <translation>Einstellungen von Ebenen wurden geändert. Als Projekt speichern?</translation>
    </message>
</context>
<context>
    <name>Viewer::PropertiesWindow</name>
    <message>
        <source>Properties of %1</source>
        <translation>Eigenschaften von %1</translation>
    </message>
</context>
<context>
    <name>Viewer::RecentSources</name>
    <message>
        <source>&amp;Clear List</source>
        <translation>Liste &amp;leeren</translation>
    </message>
</context>
<context>
    <name>Viewer::Sources</name>
    <message>
        <source>%1 is a link to a file that does not exist.</source>
        <translation>%1 ist eine Verknüpfung mit einer Datei, die nicht vorhanden ist.</translation>
    </message>
    <message>
        <source>%1 does not exist.</source>
        <translation>%1 ist nicht vorhanden.</translation>
    </message>
    <message>
        <source>%1 is a folder, not an image.</source>
        <translation>%1 ist ein Ordner, kein Bild.</translation>
    </message>
    <message>
        <source>%1 is not an ordinary file.</source>
        <translation>%1 ist keine gewöhnliche Datei.</translation>
    </message>
    <message>
        <source>%1 cannot be read: %2.</source>
        <translation>%1 kann nicht gelesen werden: %2.</translation>
    </message>
    <message>
        <source>%1 is empty.</source>
        <translation>%1 ist leer.</translation>
    </message>
</context>
<context>
    <name>Viewer::StatisticsBar</name>
    <message>
        <source>The statistics are an estimate. All cells are being counted: %1 %</source>
        <translation>Die Statistik ist eine Schätzung. Alle Zellen werden gezählt: %1 %</translation>
    </message>
    <message>
        <source>The statistics are an estimate from a part of the cells.</source>
        <translation>Die Statistik ist eine Schätzung aus einem Teil der Zellen.</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Count All Cells</source>
        <translation>Alle Zellen zählen</translation>
    </message>
</context>
<context>
    <name>Viewer::ValueTexts</name>
    <message>
        <source>no number</source>
        <translation>keine Zahl</translation>
    </message>
</context>
<context>
    <name>Viewer::ViewCommands</name>
    <message>
        <source>The view did not become complete in time; there is no picture of it.</source>
        <translation>Die Ansicht wurde nicht rechtzeitig fertig; es gibt kein Bild von ihr.</translation>
    </message>
</context>
<context>
    <name>Viewer::ViewStatus</name>
    <message>
        <source>How much of the view is decoded</source>
        <translation>Anteil der Ansicht, der dekodiert ist</translation>
    </message>
    <message>
        <source>World coordinates under the pointer</source>
        <translation>Weltkoordinaten unter dem Mauszeiger</translation>
    </message>
    <message>
        <source>Coordinate system of the active layer</source>
        <translation>Koordinatensystem des aktiven Layers</translation>
    </message>
    <message>
        <source>Screen pixels per cell of the active layer, and world units per screen pixel</source>
        <translation>Bildschirmpixel pro Zelle des aktiven Layers und Welteinheiten pro Bildschirmpixel</translation>
    </message>
    <message>
        <source>Values of the shown bands under the pointer</source>
        <translation>Werte der gezeigten Kanäle unter dem Zeiger</translation>
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
        <translation>%1 Einheiten pro Pixel</translation>
    </message>
</context>
</TS>
