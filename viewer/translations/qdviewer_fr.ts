<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr" sourcelanguage="en_US">
<context>
    <name>AboutBox</name>
    <message>
        <source>Shows very large wavelet-compressed images from files and image servers.</source>
        <translation>Affiche de très grandes images compressées par ondelettes, depuis des fichiers ou des serveurs d’images.</translation>
    </message>
    <message>
        <source>No layer plug-in is loaded.</source>
        <translation>Aucun plug-in de couches n’est chargé.</translation>
    </message>
    <message>
        <source>Plug-ins:</source>
        <translation>Plug-ins&#xa0;:</translation>
    </message>
    <message>
        <source>About %1</source>
        <translation>À propos de %1</translation>
    </message>
</context>
<context>
    <name>FailureReport</name>
    <message numerus="yes">
        <source>%1 of %n sources could not be opened.</source>
        <translation>
            <numerusform>%1 source sur %n n’a pas pu être ouverte.</numerusform>
            <numerusform>%1 sources sur %n n’ont pas pu être ouvertes.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>... and %n more (see the details)</source>
        <translation>
            <numerusform>... et %n autre (voir les détails)</numerusform>
            <numerusform>... et %n autres (voir les détails)</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>LayerOpener</name>
    <message>
        <source>%1 cannot be opened: no layer plug-in is loaded. %2</source>
        <translation>Impossible d’ouvrir %1&#xa0;: aucun plug-in de couches n’est chargé. %2</translation>
    </message>
    <message>
        <source>the format is not known</source>
        <translation>le format est inconnu</translation>
    </message>
    <message>
        <source>%1 cannot be opened: %2</source>
        <translation>Impossible d’ouvrir %1&#xa0;: %2</translation>
    </message>
</context>
<context>
    <name>ProjectReader</name>
    <message>
        <source>The project %1 cannot be read: %2.</source>
        <translation>Impossible de lire le projet %1&#xa0;: %2.</translation>
    </message>
    <message>
        <source>%1 is too large to be a project.</source>
        <translation>%1 est trop volumineux pour être un projet.</translation>
    </message>
    <message>
        <source>%1 is not a project: %2 in line %3, column %4.</source>
        <translation>%1 n’est pas un projet&#xa0;: %2, ligne %3, colonne %4.</translation>
    </message>
    <message>
        <source>%1 is an XML file, but not a project.</source>
        <translation>%1 est un fichier XML, mais pas un projet.</translation>
    </message>
    <message>
        <source>The project %1 does not tell its version.</source>
        <translation>Le projet %1 n’indique pas sa version.</translation>
    </message>
    <message>
        <source>The project %1 was written by a newer version of this program.</source>
        <translation>Le projet %1 a été écrit par une version plus récente de ce programme.</translation>
    </message>
    <message>
        <source>A view has no valid extent and is shown whole.</source>
        <translation>Une vue n’a pas d’emprise valide et est affichée en entier.</translation>
    </message>
    <message>
        <source>A layer of the project does not tell its kind.</source>
        <translation>Une couche du projet n’indique pas son type.</translation>
    </message>
    <message>
        <source>No loaded plug-in makes layers of the kind %1.</source>
        <translation>Aucun plug-in chargé ne crée de couches du type %1.</translation>
    </message>
    <message>
        <source>A layer of the kind %1 cannot be restored.</source>
        <translation>Impossible de restaurer une couche du type %1.</translation>
    </message>
    <message>
        <source>%1 is too large to be a project: it has more than %2 elements and attributes, or more than %3 levels of them.</source>
        <translation>%1 est trop grand pour être un projet : il contient plus de %2 éléments et attributs ou plus de %3 niveaux.</translation>
    </message>
</context>
<context>
    <name>ProjectWriter</name>
    <message>
        <source>%1 cannot be written: %2</source>
        <translation>Impossible d’écrire %1&#xa0;: %2</translation>
    </message>
</context>
<context>
    <name>Viewer</name>
    <message>
        <source>No layer plug-in was found in %1.</source>
        <translation>Aucun plug-in de couches n’a été trouvé dans %1.</translation>
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
        <translation>Identifier</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nom</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Valeur</translation>
    </message>
    <message>
        <source>Click on the map to see what lies there.</source>
        <translation>Cliquez sur la carte pour voir ce qui s’y trouve.</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Copier</translation>
    </message>
    <message>
        <source>Place</source>
        <translation>Lieu</translation>
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
        <translation>lecture...</translation>
    </message>
    <message>
        <source>lies elsewhere</source>
        <translation>se trouve ailleurs</translation>
    </message>
    <message>
        <source>Column, row</source>
        <translation>Colonne, ligne</translation>
    </message>
    <message>
        <source>Band %1</source>
        <translation>Bande %1</translation>
    </message>
    <message>
        <source>Longitude</source>
        <translation>Longitude</translation>
    </message>
    <message>
        <source>Latitude</source>
        <translation>Latitude</translation>
    </message>
</context>
<context>
    <name>Viewer::LayerListDock</name>
    <message>
        <source>Layers</source>
        <translation>Couches</translation>
    </message>
    <message>
        <source>&amp;Zoom to Layer</source>
        <translation>&amp;Zoomer sur la couche</translation>
    </message>
    <message>
        <source>Show all of this layer</source>
        <translation>Afficher toute la couche</translation>
    </message>
    <message>
        <source>Zoom to &amp;1:1</source>
        <translation>Zoom &amp;1:1</translation>
    </message>
    <message>
        <source>Show this layer with one cell per pixel</source>
        <translation>Afficher la couche avec une cellule par pixel</translation>
    </message>
    <message>
        <source>Move &amp;Up</source>
        <translation>&amp;Monter</translation>
    </message>
    <message>
        <source>Move the layer up</source>
        <translation>Monter la couche</translation>
    </message>
    <message>
        <source>Move &amp;Down</source>
        <translation>&amp;Descendre</translation>
    </message>
    <message>
        <source>Move the layer down</source>
        <translation>Descendre la couche</translation>
    </message>
    <message>
        <source>Move to &amp;Top</source>
        <translation>Placer tout en &amp;haut</translation>
    </message>
    <message>
        <source>Move to &amp;Bottom</source>
        <translation>Placer tout en &amp;bas</translation>
    </message>
    <message>
        <source>Re&amp;name</source>
        <translation>Re&amp;nommer</translation>
    </message>
    <message>
        <source>&amp;Copy File Name or Address</source>
        <translation>&amp;Copier le nom de fichier ou l’adresse</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>&amp;Retirer</translation>
    </message>
    <message>
        <source>Remove the layer from the view</source>
        <translation>Retirer la couche de la vue</translation>
    </message>
    <message>
        <source>&amp;Properties...</source>
        <translation>&amp;Propriétés...</translation>
    </message>
    <message>
        <source>What is known of this layer</source>
        <translation>Informations sur cette couche</translation>
    </message>
</context>
<context>
    <name>Viewer::LayerListModel</name>
    <message>
        <source>%1 × %2 cells</source>
        <translation>%1 × %2 cellules</translation>
    </message>
</context>
<context>
    <name>Viewer::LayerSummaryPage</name>
    <message>
        <source>General</source>
        <translation>Général</translation>
    </message>
    <message>
        <source>Source:</source>
        <translation>Source&#xa0;:</translation>
    </message>
    <message>
        <source>Format:</source>
        <translation>Format&#xa0;:</translation>
    </message>
    <message>
        <source>Access:</source>
        <translation>Accès&#xa0;:</translation>
    </message>
    <message>
        <source>Coordinate system:</source>
        <translation>Système de coordonnées&#xa0;:</translation>
    </message>
    <message>
        <source>First corner:</source>
        <translation>Premier coin&#xa0;:</translation>
    </message>
    <message>
        <source>Opposite corner:</source>
        <translation>Coin opposé&#xa0;:</translation>
    </message>
    <message>
        <source>Comments:</source>
        <translation>Commentaires&#xa0;:</translation>
    </message>
    <message>
        <source>Size in cells:</source>
        <translation>Taille en cellules&#xa0;:</translation>
    </message>
    <message>
        <source>Cell size:</source>
        <translation>Taille des cellules&#xa0;:</translation>
    </message>
    <message>
        <source>Cell type:</source>
        <translation>Type de cellule&#xa0;:</translation>
    </message>
    <message>
        <source>Bands:</source>
        <translation>Bandes&#xa0;:</translation>
    </message>
    <message>
        <source>Rotation:</source>
        <translation>Rotation&#xa0;:</translation>
    </message>
    <message>
        <source>%1° clockwise</source>
        <translation>%1° dans le sens horaire</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <extracomment>Two numbers, which must be told apart where the comma is the decimal point.</extracomment>
        <translation>%1&#xa0;; %2</translation>
    </message>
</context>
<context>
    <name>Viewer::LogDock</name>
    <message>
        <source>Log</source>
        <translation>Journal</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Copier</translation>
    </message>
    <message>
        <source>Copies the selected lines, or all that are shown</source>
        <translation>Copie les lignes sélectionnées, ou toutes celles affichées</translation>
    </message>
    <message>
        <source>C&amp;lear</source>
        <translation>&amp;Vider</translation>
    </message>
    <message>
        <source>The least severe messages that are shown, and logged from now on</source>
        <translation>Gravité minimale des messages affichés, et consignés à partir de maintenant</translation>
    </message>
    <message>
        <source>Fro&amp;m level:</source>
        <translation>À partir &amp;du niveau&#xa0;:</translation>
    </message>
</context>
<context>
    <name>Viewer::LogModel</name>
    <message>
        <source>Time</source>
        <translation>Heure</translation>
    </message>
    <message>
        <source>Level</source>
        <translation>Niveau</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Message</translation>
    </message>
</context>
<context>
    <name>Viewer::MainActions</name>
    <message>
        <source>&amp;Open...</source>
        <translation>&amp;Ouvrir...</translation>
    </message>
    <message>
        <source>Open images in the current view</source>
        <translation>Ouvrir des images dans la vue active</translation>
    </message>
    <message>
        <source>Open in Ne&amp;w View...</source>
        <translation>Ouvrir dans une nouvelle &amp;vue...</translation>
    </message>
    <message>
        <source>Open images in a view of their own</source>
        <translation>Ouvrir des images dans leur propre vue</translation>
    </message>
    <message>
        <source>&amp;New View</source>
        <translation>&amp;Nouvelle vue</translation>
    </message>
    <message>
        <source>Add an empty map view</source>
        <translation>Ajouter une vue cartographique vide</translation>
    </message>
    <message>
        <source>Open &amp;Project...</source>
        <translation>Ouvrir un &amp;projet...</translation>
    </message>
    <message>
        <source>Replace all views by those of a project</source>
        <translation>Remplacer toutes les vues par celles d’un projet</translation>
    </message>
    <message>
        <source>&amp;Save Project</source>
        <translation>&amp;Enregistrer le projet</translation>
    </message>
    <message>
        <source>Save all views and their layers</source>
        <translation>Enregistrer toutes les vues et leurs couches</translation>
    </message>
    <message>
        <source>Save Project &amp;As...</source>
        <translation>Enregistrer le projet &amp;sous...</translation>
    </message>
    <message>
        <source>Save all views and their layers in another file</source>
        <translation>Enregistrer toutes les vues et leurs couches dans un autre fichier</translation>
    </message>
    <message>
        <source>Save P&amp;icture...</source>
        <translation>Enregistrer l’&amp;image...</translation>
    </message>
    <message>
        <source>Save what the current view shows as a picture</source>
        <translation>Enregistrer comme image ce que montre la vue active</translation>
    </message>
    <message>
        <source>Pre&amp;ferences...</source>
        <translation>Pré&amp;férences...</translation>
    </message>
    <message>
        <source>Settings of the plug-ins</source>
        <translation>Réglages des plug-ins</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Quitter</translation>
    </message>
    <message>
        <source>About &amp;Qt</source>
        <translation>À propos de &amp;Qt</translation>
    </message>
    <message>
        <source>Zoom &amp;In</source>
        <translation>Zoom &amp;avant</translation>
    </message>
    <message>
        <source>Show the map larger</source>
        <translation>Agrandir la carte</translation>
    </message>
    <message>
        <source>Zoom &amp;Out</source>
        <translation>Zoom a&amp;rrière</translation>
    </message>
    <message>
        <source>Show the map smaller</source>
        <translation>Réduire la carte</translation>
    </message>
    <message>
        <source>Zoom to &amp;All</source>
        <translation>Zoomer sur &amp;tout</translation>
    </message>
    <message>
        <source>Show all layers of the view</source>
        <translation>Afficher toutes les couches de la vue</translation>
    </message>
    <message>
        <source>Zoom to &amp;Layer</source>
        <translation>Zoomer sur la &amp;couche</translation>
    </message>
    <message>
        <source>Show all of the selected layer</source>
        <translation>Afficher toute la couche sélectionnée</translation>
    </message>
    <message>
        <source>Zoom to &amp;1:1</source>
        <translation>Zoom &amp;1:1</translation>
    </message>
    <message>
        <source>Show one cell of the selected layer per pixel</source>
        <translation>Afficher une cellule de la couche sélectionnée par pixel</translation>
    </message>
    <message>
        <source>Layer &amp;Properties...</source>
        <translation>&amp;Propriétés de la couche...</translation>
    </message>
    <message>
        <source>What is known of the selected layer</source>
        <translation>Informations sur la couche sélectionnée</translation>
    </message>
    <message>
        <source>&amp;Tabs</source>
        <translation>&amp;Onglets</translation>
    </message>
    <message>
        <source>Show one view at a time, in tabs</source>
        <translation>Afficher une vue à la fois, dans des onglets</translation>
    </message>
    <message>
        <source>&amp;Cascade</source>
        <translation>&amp;Cascade</translation>
    </message>
    <message>
        <source>Show the views as windows, one behind the other</source>
        <translation>Afficher les vues dans des fenêtres, l’une derrière l’autre</translation>
    </message>
    <message>
        <source>T&amp;ile</source>
        <translation>&amp;Mosaïque</translation>
    </message>
    <message>
        <source>Show the views as windows, side by side</source>
        <translation>Afficher les vues dans des fenêtres, côte à côte</translation>
    </message>
    <message>
        <source>Ne&amp;xt View</source>
        <translation>Vue &amp;suivante</translation>
    </message>
    <message>
        <source>&amp;Rename View...</source>
        <translation>&amp;Renommer la vue...</translation>
    </message>
    <message>
        <source>Cl&amp;ose View</source>
        <translation>&amp;Fermer la vue</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Affichage</translation>
    </message>
    <message>
        <source>&amp;Window</source>
        <translation>Fe&amp;nêtre</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>Aid&amp;e</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Fichier</translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation>Ouvrir un élément &amp;récent</translation>
    </message>
    <message>
        <source>Open Recent Pro&amp;ject</source>
        <translation>Ouvrir un pro&amp;jet récent</translation>
    </message>
    <message>
        <source>Main</source>
        <translation>Barre d’outils principale</translation>
    </message>
    <message>
        <source>&amp;About %1</source>
        <translation>À &amp;propos de %1</translation>
    </message>
    <message>
        <source>&amp;Copy Picture</source>
        <translation>&amp;Copier l’image</translation>
    </message>
    <message>
        <source>Put what the current view shows into the clipboard</source>
        <translation>Mettre dans le presse-papiers ce que montre la vue actuelle</translation>
    </message>
    <message>
        <source>&amp;Full Screen</source>
        <translation>Plein écra&amp;n</translation>
    </message>
    <message>
        <source>Fill the screen with the window</source>
        <translation>Remplir l’écran avec la fenêtre</translation>
    </message>
    <message>
        <source>Next &amp;Panel</source>
        <translation>&amp;Panneau suivant</translation>
    </message>
    <message>
        <source>Give the keyboard to the next panel</source>
        <translation>Donner le clavier au panneau suivant</translation>
    </message>
    <message>
        <source>Pre&amp;vious Panel</source>
        <translation>Panneau précé&amp;dent</translation>
    </message>
    <message>
        <source>Give the keyboard to the panel before</source>
        <translation>Donner le clavier au panneau précédent</translation>
    </message>
    <message>
        <source>&amp;Back</source>
        <translation>Reto&amp;ur</translation>
    </message>
    <message>
        <source>Show what the view showed before</source>
        <translation>Montrer ce que la vue montrait avant</translation>
    </message>
    <message>
        <source>Fo&amp;rward</source>
        <translation>A&amp;vancer</translation>
    </message>
    <message>
        <source>Show what the view showed before going back</source>
        <translation>Montrer ce que la vue montrait avant de revenir</translation>
    </message>
    <message>
        <source>&amp;Go to Coordinates...</source>
        <translation>Aller aux coor&amp;données...</translation>
    </message>
    <message>
        <source>Show a place in the middle of the view</source>
        <translation>Montrer un lieu au milieu de la vue</translation>
    </message>
</context>
<context>
    <name>Viewer::MainWindow</name>
    <message>
        <source>Open</source>
        <translation>Ouvrir</translation>
    </message>
    <message>
        <source>Open in New View</source>
        <translation>Ouvrir dans une nouvelle vue</translation>
    </message>
    <message>
        <source>%1 cannot be shown.</source>
        <translation>Impossible d’afficher %1.</translation>
    </message>
    <message>
        <source>Save Picture</source>
        <translation>Enregistrer l’image</translation>
    </message>
    <message>
        <source>PNG images (*.png)</source>
        <translation>Images PNG (*.png)</translation>
    </message>
    <message>
        <source>Rename View</source>
        <translation>Renommer la vue</translation>
    </message>
    <message>
        <source>Title (empty: the layer&apos;s name):</source>
        <translation>Titre (vide&#xa0;: le nom de la couche)&#xa0;:</translation>
    </message>
    <message>
        <source>JPEG images (*.jpg *.jpeg)</source>
        <translation>Images JPEG (*.jpg *.jpeg)</translation>
    </message>
    <message>
        <source>Go to Coordinates</source>
        <translation>Aller aux coordonnées</translation>
    </message>
    <message>
        <source>X and Y, or latitude and longitude, such as 46.72 N 9.92 E:</source>
        <translation>X et Y, ou latitude et longitude, comme 46.72 N 9.92 E:</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is no place that can be shown here.</source>
        <translation>« %1 » n’est pas un lieu qui puisse être montré ici.</translation>
    </message>
</context>
<context>
    <name>Viewer::MapArea</name>
    <message>
        <source>View %1</source>
        <translation>Vue %1</translation>
    </message>
</context>
<context>
    <name>Viewer::MapMenu</name>
    <message>
        <source>&amp;What Is Here?</source>
        <translation>&amp;Qu’y a-t-il ici ?</translation>
    </message>
    <message>
        <source>&amp;Copy Coordinates %1</source>
        <translation>&amp;Copier les coordonnées %1</translation>
    </message>
    <message>
        <source>C&amp;entre Here</source>
        <translation>C&amp;entrer ici</translation>
    </message>
</context>
<context>
    <name>Viewer::MapNotices</name>
    <message>
        <source>%1 lies outside the view.</source>
        <translation>%1 se trouve hors de la vue.</translation>
    </message>
    <message>
        <source>Zoom to Layer</source>
        <translation>Zoomer sur la couche</translation>
    </message>
    <message>
        <source>%1 is damaged and shown as well as can be: %2</source>
        <translation>%1 est endommagé et affiché au mieux : %2</translation>
    </message>
    <message>
        <source>The connection is lost: %1</source>
        <translation>La connexion est perdue : %1</translation>
    </message>
    <message>
        <source>Reconnect</source>
        <translation>Reconnecter</translation>
    </message>
    <message>
        <source>Open Again</source>
        <translation>Rouvrir</translation>
    </message>
    <message>
        <source>Hide this message</source>
        <translation>Masquer ce message</translation>
    </message>
</context>
<context>
    <name>Viewer::Pictures</name>
    <message>
        <source>The picture %1 cannot be written: %2</source>
        <translation>Impossible d’écrire l’image %1&#xa0;: %2</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is no format for pictures; take png or jpg.</source>
        <translation>« %1 » n’est pas un format d’image ; utilisez png ou jpg.</translation>
    </message>
</context>
<context>
    <name>Viewer::PreferencesDialog</name>
    <message>
        <source>Preferences</source>
        <translation>Préférences</translation>
    </message>
    <message>
        <source>No loaded plug-in has preferences.</source>
        <translation>Aucun des plug-ins chargés n’a de préférences.</translation>
    </message>
</context>
<context>
    <name>Viewer::ProjectDialogs</name>
    <message>
        <source>Projects (*%1)</source>
        <translation>Projets (*%1)</translation>
    </message>
    <message>
        <source>Open Project</source>
        <translation>Ouvrir un projet</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Tous les fichiers (*)</translation>
    </message>
    <message>
        <source>Save Project</source>
        <translation>Enregistrer le projet</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>Projet</translation>
    </message>
    <message>
        <source>The project %1 was changed. Save the changes?</source>
        <translation>Le projet %1 a été modifié. Enregistrer les modifications&#xa0;?</translation>
    </message>
    <message>
        <source>Settings of layers were changed. Save them as a project?</source>
        <translation>Des réglages de couches ont été modifiés. Les enregistrer comme projet ?</translation>
    </message>
</context>
<context>
    <name>Viewer::PropertiesWindow</name>
    <message>
        <source>Properties of %1</source>
        <translation>Propriétés de %1</translation>
    </message>
</context>
<context>
    <name>Viewer::RecentSources</name>
    <message>
        <source>&amp;Clear List</source>
        <translation>&amp;Vider la liste</translation>
    </message>
</context>
<context>
    <name>Viewer::Sources</name>
    <message>
        <source>%1 is a link to a file that does not exist.</source>
        <translation>%1 est un lien vers un fichier qui n’existe pas.</translation>
    </message>
    <message>
        <source>%1 does not exist.</source>
        <translation>%1 n’existe pas.</translation>
    </message>
    <message>
        <source>%1 is a folder, not an image.</source>
        <translation>%1 est un dossier, pas une image.</translation>
    </message>
    <message>
        <source>%1 is not an ordinary file.</source>
        <translation>%1 n’est pas un fichier ordinaire.</translation>
    </message>
    <message>
        <source>%1 cannot be read: %2.</source>
        <translation>Impossible de lire %1&#xa0;: %2.</translation>
    </message>
    <message>
        <source>%1 is empty.</source>
        <translation>%1 est vide.</translation>
    </message>
</context>
<context>
    <name>Viewer::StatisticsBar</name>
    <message>
        <source>The statistics are an estimate. All cells are being counted: %1 %</source>
        <translation>Les statistiques sont une estimation. Toutes les cellules sont en cours de comptage : %1 %</translation>
    </message>
    <message>
        <source>The statistics are an estimate from a part of the cells.</source>
        <translation>Les statistiques sont une estimation faite sur une partie des cellules.</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>Count All Cells</source>
        <translation>Compter toutes les cellules</translation>
    </message>
</context>
<context>
    <name>Viewer::ValueTexts</name>
    <message>
        <source>no number</source>
        <translation>pas un nombre</translation>
    </message>
</context>
<context>
    <name>Viewer::ViewCommands</name>
    <message>
        <source>The view did not become complete in time; there is no picture of it.</source>
        <translation>La vue n’a pas été complète à temps ; il n’y en a pas d’image.</translation>
    </message>
</context>
<context>
    <name>Viewer::ViewStatus</name>
    <message>
        <source>How much of the view is decoded</source>
        <translation>Part de la vue déjà décodée</translation>
    </message>
    <message>
        <source>World coordinates under the pointer</source>
        <translation>Coordonnées terrain sous le pointeur</translation>
    </message>
    <message>
        <source>Coordinate system of the active layer</source>
        <translation>Système de coordonnées de la couche active</translation>
    </message>
    <message>
        <source>Screen pixels per cell of the active layer, and world units per screen pixel</source>
        <translation>Pixels d’écran par cellule de la couche active, et unités terrain par pixel d’écran</translation>
    </message>
    <message>
        <source>Values of the shown bands under the pointer</source>
        <translation>Valeurs des bandes affichées sous le pointeur</translation>
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
        <translation>%1 unités par pixel</translation>
    </message>
</context>
</TS>
