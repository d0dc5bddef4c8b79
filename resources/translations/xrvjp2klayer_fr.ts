<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr" sourcelanguage="en_US">
<context>
    <name>Korvane::XRVJP2kLayer</name>
    <message>
        <source>Unknown</source>
        <translation>Inconnu</translation>
    </message>
    <message>
        <source>Local XRV file</source>
        <translation>Fichier XRV local</translation>
    </message>
    <message>
        <source>Local JPEG 2000 file</source>
        <translation>Fichier JPEG 2000 local</translation>
    </message>
    <message>
        <source>Local file</source>
        <translation>Fichier local</translation>
    </message>
    <message>
        <source>Unknown progression order</source>
        <translation>Ordre de progression inconnu</translation>
    </message>
    <message>
        <source>Could not open URL file.</source>
        <translation>Impossible d’ouvrir le fichier URL.</translation>
    </message>
    <message>
        <source>URL file contains non supported protocol type.</source>
        <translation>Le fichier URL contient un type de protocole non pris en charge.</translation>
    </message>
    <message>
        <source>JPIP protocol not supported.</source>
        <translation>Le protocole JPIP n’est pas pris en charge.</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 sur %2</translation>
    </message>
    <message>
        <source>Open Stream</source>
        <translation>Ouvrir un flux</translation>
    </message>
    <message>
        <source>Opening %1 from %2...</source>
        <translation>Ouverture de %1 depuis %2...</translation>
    </message>
    <message>
        <source>The opening was cancelled.</source>
        <translation>L’ouverture a été annulée.</translation>
    </message>
    <message>
        <source>Images that reach beyond 2147483647 cells are not supported.</source>
        <translation>Les images qui dépassent 2147483647 cellules ne sont pas prises en charge.</translation>
    </message>
    <message>
        <source>JPEG 2000 compound documents are not supported.</source>
        <translation>Les documents composés JPEG 2000 ne sont pas pris en charge.</translation>
    </message>
    <message>
        <source>Motion JPEG 2000 files are not supported.</source>
        <translation>Les fichiers Motion JPEG 2000 ne sont pas pris en charge.</translation>
    </message>
    <message>
        <source>The JPEG 2000 codestream ends within its main header.</source>
        <translation>Le flux de codes JPEG 2000 se termine dans son en-tête principal.</translation>
    </message>
    <message>
        <source>The XRV file ends before its version.</source>
        <translation>Le fichier XRV se termine avant sa version.</translation>
    </message>
    <message>
        <source>The XRV file has no version.</source>
        <translation>Le fichier XRV n’a pas de version.</translation>
    </message>
    <message>
        <source>The codestream of the XRV file does not hold the cells that the file describes.</source>
        <translation>Le flux de code du fichier XRV ne contient pas les cellules que le fichier décrit.</translation>
    </message>
    <message>
        <source>What the XRV file says of its cells is damaged.</source>
        <translation>Ce que le fichier XRV dit de ses cellules est endommagé.</translation>
    </message>
    <message>
        <source>The codestream lies in another file, which is not supported.</source>
        <translation>Le flux de codes se trouve dans un autre fichier, ce qui n’est pas pris en charge.</translation>
    </message>
    <message>
        <source>The codestream lies in scattered pieces, which is not supported.</source>
        <translation>Le flux de codes est dispersé en morceaux, ce qui n’est pas pris en charge.</translation>
    </message>
    <message>
        <source>The file ends before its codestream begins.</source>
        <translation>Le fichier se termine avant le début de son flux de codes.</translation>
    </message>
    <message>
        <source>The file has no JPEG 2000 codestream.</source>
        <translation>Le fichier n’a pas de flux de codes JPEG 2000.</translation>
    </message>
    <message>
        <source>The file is empty.</source>
        <translation>Le fichier est vide.</translation>
    </message>
    <message>
        <source>The file is not a JPEG 2000 file.</source>
        <translation>Le fichier n’est pas un fichier JPEG 2000.</translation>
    </message>
    <message>
        <source>The file is not an XRV image.</source>
        <translation>Le fichier n’est pas une image XRV.</translation>
    </message>
    <message>
        <source>The fragment table of the codestream is damaged.</source>
        <translation>La table des fragments du flux de codes est endommagée.</translation>
    </message>
    <message>
        <source>The server sent a page or a message, not an image.</source>
        <translation>Le serveur a envoyé une page ou un message, pas une image.</translation>
    </message>
    <message>
        <source>This file is not an XRV image that this library can read.</source>
        <translation>Ce fichier n’est pas une image XRV que cette bibliothèque sait lire.</translation>
    </message>
    <message>
        <source>There is no thread to spare for reading values.</source>
        <translation>Il n’y a plus de fil d’exécution pour lire des valeurs.</translation>
    </message>
</context>
<context>
    <name>XRVJP2LayerMetaDataBox</name>
    <message>
        <source>Metadata</source>
        <translation>Métadonnées</translation>
    </message>
    <message>
        <source>Metadata Boxes</source>
        <translation>Boîtes de métadonnées</translation>
    </message>
    <message>
        <source>Box Id:</source>
        <translation>ID de la boîte&#xa0;:</translation>
    </message>
</context>
<context>
    <name>XRVJP2kLayerFileInfo</name>
    <message>
        <source>XRV Info</source>
        <translation>Infos XRV</translation>
    </message>
    <message>
        <source>XRV JP2 Compression Info</source>
        <translation>Infos de compression XRV et JP2</translation>
    </message>
    <message>
        <source>XRVP Version:</source>
        <translation>Version XRVP&#xa0;:</translation>
    </message>
    <message>
        <source>File Format Version</source>
        <translation>Version du format de fichier</translation>
    </message>
    <message>
        <source>GDT Datum:</source>
        <translation>Datum GDT&#xa0;:</translation>
    </message>
    <message>
        <source>GDT Projection:</source>
        <translation>Projection GDT&#xa0;:</translation>
    </message>
    <message>
        <source>GDT Units:</source>
        <translation>Unités GDT&#xa0;:</translation>
    </message>
    <message>
        <source>Compressed Size:</source>
        <translation>Taille compressée&#xa0;:</translation>
    </message>
    <message>
        <source>Uncompressed Size:</source>
        <translation>Taille non compressée&#xa0;:</translation>
    </message>
    <message>
        <source>Target Compression Rate:</source>
        <translation>Taux de compression visé&#xa0;:</translation>
    </message>
    <message>
        <source>Actual Compression Rate:</source>
        <translation>Taux de compression réel&#xa0;:</translation>
    </message>
    <message>
        <source>Block Size:</source>
        <translation>Taille de bloc&#xa0;:</translation>
    </message>
    <message>
        <source>Compression Date:</source>
        <translation>Date de compression&#xa0;:</translation>
    </message>
    <message>
        <source>Classification:</source>
        <translation>Classification&#xa0;:</translation>
    </message>
    <message>
        <source>Acquisition Date:</source>
        <translation>Date d’acquisition&#xa0;:</translation>
    </message>
    <message>
        <source>Acquisition Sensor Name:</source>
        <translation>Nom du capteur d’acquisition&#xa0;:</translation>
    </message>
    <message>
        <source>Compression Software:</source>
        <translation>Logiciel de compression&#xa0;:</translation>
    </message>
    <message>
        <source>Author:</source>
        <translation>Auteur&#xa0;:</translation>
    </message>
    <message>
        <source>Copyright:</source>
        <translation>Copyright&#xa0;:</translation>
    </message>
    <message>
        <source>Company:</source>
        <translation>Société&#xa0;:</translation>
    </message>
    <message>
        <source>Email:</source>
        <translation>E-mail&#xa0;:</translation>
    </message>
    <message>
        <source>Address:</source>
        <translation>Adresse&#xa0;:</translation>
    </message>
    <message>
        <source>Telephone:</source>
        <translation>Téléphone&#xa0;:</translation>
    </message>
    <message>
        <source>Copy to Clipboard</source>
        <translation>Copier dans le presse-papiers</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Inconnu</translation>
    </message>
    <message>
        <source>Not valid for .jp2 files</source>
        <translation>Sans objet pour les fichiers .jp2</translation>
    </message>
    <message>
        <source>XRVP Version = %1</source>
        <translation>Version XRVP = %1</translation>
    </message>
    <message>
        <source>Local file</source>
        <translation>Fichier local</translation>
    </message>
    <message>
        <source>Format Version = %1</source>
        <translation>Version du format = %1</translation>
    </message>
    <message>
        <source>GDT Datum = %1</source>
        <translation>Datum GDT = %1</translation>
    </message>
    <message>
        <source>GDT Projection = %1</source>
        <translation>Projection GDT = %1</translation>
    </message>
    <message>
        <source>GDT Units = %1</source>
        <translation>Unités GDT = %1</translation>
    </message>
    <message>
        <source>Compressed Size = %1</source>
        <translation>Taille compressée = %1</translation>
    </message>
    <message>
        <source>Uncompressed Size = %1</source>
        <translation>Taille non compressée = %1</translation>
    </message>
    <message>
        <source>Target Compression Rate = %1:1</source>
        <translation>Taux de compression visé = %1:1</translation>
    </message>
    <message>
        <source>Actual Compression Ratio = %1</source>
        <translation>Rapport de compression réel = %1</translation>
    </message>
    <message>
        <source>Compression Date = %1</source>
        <translation>Date de compression = %1</translation>
    </message>
    <message>
        <source>Classification = %1</source>
        <translation>Classification = %1</translation>
    </message>
    <message>
        <source>Acquisition Date = %1</source>
        <translation>Date d’acquisition = %1</translation>
    </message>
    <message>
        <source>Acquisition Sensor Name = %1</source>
        <translation>Nom du capteur d’acquisition = %1</translation>
    </message>
    <message>
        <source>Compression Software = %1</source>
        <translation>Logiciel de compression = %1</translation>
    </message>
    <message>
        <source>Author = %1</source>
        <translation>Auteur = %1</translation>
    </message>
    <message>
        <source>Copyright = %1</source>
        <translation>Copyright = %1</translation>
    </message>
    <message>
        <source>Company = %1</source>
        <translation>Société = %1</translation>
    </message>
    <message>
        <source>Email = %1</source>
        <translation>E-mail = %1</translation>
    </message>
    <message>
        <source>Address = %1</source>
        <translation>Adresse = %1</translation>
    </message>
    <message>
        <source>Telephone = %1</source>
        <translation>Téléphone = %1</translation>
    </message>
</context>
<context>
    <name>XRVJP2kLayerJP2FileInfo</name>
    <message>
        <source>JP2 Info</source>
        <translation>Infos JP2</translation>
    </message>
    <message>
        <source>JPEG 2000 Header Info</source>
        <translation>En-tête JPEG 2000</translation>
    </message>
    <message>
        <source>Comments:</source>
        <translation>Commentaires&#xa0;:</translation>
    </message>
    <message>
        <source>Profile:</source>
        <translation>Profil&#xa0;:</translation>
    </message>
    <message>
        <source>Number of Tiles (X,Y):</source>
        <translation>Nombre de tuiles (X,Y)&#xa0;:</translation>
    </message>
    <message>
        <source>Tile Size (X,Y):</source>
        <translation>Taille des tuiles (X,Y)&#xa0;:</translation>
    </message>
    <message>
        <source>Precinct Size X:</source>
        <translation>Taille des precincts X&#xa0;:</translation>
    </message>
    <message>
        <source>Precinct Size Y:</source>
        <translation>Taille des precincts Y&#xa0;:</translation>
    </message>
    <message>
        <source>Code Block Size (Y,X):</source>
        <translation>Taille des blocs de code (Y,X)&#xa0;:</translation>
    </message>
    <message>
        <source>Bitdepth:</source>
        <translation>Profondeur de bits&#xa0;:</translation>
    </message>
    <message>
        <source>Resolution Levels:</source>
        <translation>Niveaux de résolution&#xa0;:</translation>
    </message>
    <message>
        <source>Quality Layers:</source>
        <translation>Couches de qualité&#xa0;:</translation>
    </message>
    <message>
        <source>Progression Order:</source>
        <translation>Ordre de progression&#xa0;:</translation>
    </message>
    <message>
        <source>Filter:</source>
        <translation>Filtre&#xa0;:</translation>
    </message>
    <message>
        <source>Use Sop:</source>
        <translation>SOP utilisé&#xa0;:</translation>
    </message>
    <message>
        <source>Use Eph:</source>
        <translation>EPH utilisé&#xa0;:</translation>
    </message>
    <message>
        <source>GML in JP2 Box:</source>
        <translation>Boîte GML en JP2&#xa0;:</translation>
    </message>
    <message>
        <source>Copy to Clipboard</source>
        <translation>Copier dans le presse-papiers</translation>
    </message>
    <message>
        <source>Comments = %1</source>
        <translation>Commentaires = %1</translation>
    </message>
    <message>
        <source>Profile = %1</source>
        <translation>Profil = %1</translation>
    </message>
    <message>
        <source>Tiles Dimensions (X,Y) = %1 x %2</source>
        <translation>Nombre de tuiles (X,Y) = %1 x %2</translation>
    </message>
    <message>
        <source>Tile Width = %1</source>
        <translation>Largeur des tuiles = %1</translation>
    </message>
    <message>
        <source>Tile Height = %1</source>
        <translation>Hauteur des tuiles = %1</translation>
    </message>
    <message>
        <source>Precinct Sizes on X axis = %1</source>
        <translation>Tailles des precincts sur l’axe X = %1</translation>
    </message>
    <message>
        <source>Precinct Sizes on Y axis = %1</source>
        <translation>Tailles des precincts sur l’axe Y = %1</translation>
    </message>
    <message>
        <source>Code Block Dimensions (X,Y) = %1 x %2</source>
        <translation>Dimensions des blocs de code (X,Y) = %1 x %2</translation>
    </message>
    <message>
        <source>Band Bit Depths = %1</source>
        <translation>Profondeurs de bits des bandes = %1</translation>
    </message>
    <message>
        <source>Resolution Levels = %1</source>
        <translation>Niveaux de résolution = %1</translation>
    </message>
    <message>
        <source>Quality Layers = %1</source>
        <translation>Couches de qualité = %1</translation>
    </message>
    <message>
        <source>Progression Order = %1</source>
        <translation>Ordre de progression = %1</translation>
    </message>
    <message>
        <source>Filter = %1</source>
        <translation>Filtre = %1</translation>
    </message>
    <message>
        <source>SOP Markers = %1</source>
        <translation>Marqueurs SOP = %1</translation>
    </message>
    <message>
        <source>EPH Markers = %1</source>
        <translation>Marqueurs EPH = %1</translation>
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
        <translation>Une boîte XML a été trouvée, mais son contenu n’a pas pu être analysé.</translation>
    </message>
    <message>
        <source>&apos;%1&apos; Box #%2:</source>
        <translation>Boîte «&#xa0;%1&#xa0;» nº %2&#xa0;:</translation>
    </message>
</context>
<context>
    <name>XRVJP2kLayerPlugin</name>
    <message>
        <source>Begin XRV JPEG 2000 Plugin initialization log</source>
        <translation>Début du journal d’initialisation du plug-in XRV JPEG 2000</translation>
    </message>
    <message>
        <source>      XRV Library Version : %1</source>
        <translation>      Version de la bibliothèque XRV&#xa0;: %1</translation>
    </message>
    <message>
        <source>      XRVP local disk cache enabled : %1</source>
        <translation>      Cache disque XRVP local activé&#xa0;: %1</translation>
    </message>
    <message>
        <source>      XRVP local disk cache dir: %1</source>
        <translation>      Dossier du cache disque XRVP local&#xa0;: %1</translation>
    </message>
    <message>
        <source>      XRVP local disk cache max size (Mb): %1</source>
        <translation>      Taille maximale du cache disque XRVP local (Mo)&#xa0;: %1</translation>
    </message>
    <message>
        <source>      XRV apply texture dither: %1</source>
        <translation>      Appliquer le tramage de texture XRV&#xa0;: %1</translation>
    </message>
    <message>
        <source>      Cache max mem (Mb): %1</source>
        <translation>      Mémoire maximale du cache (Mo)&#xa0;: %1</translation>
    </message>
    <message>
        <source>      Use resilient decoding: %1</source>
        <translation>      Utiliser le décodage tolérant&#xa0;: %1</translation>
    </message>
    <message>
        <source>      Optimize for nearest neighbour resampling: %1</source>
        <translation>      Optimiser pour le rééchantillonnage au plus proche voisin&#xa0;: %1</translation>
    </message>
    <message>
        <source>      XRVP HTTP User-Agent: %1</source>
        <translation>      User-Agent HTTP pour XRVP&#xa0;: %1</translation>
    </message>
    <message>
        <source>      Using WinHttp (instead of WinInet) for XRVP streaming: %1</source>
        <translation>      Utiliser WinHttp (au lieu de WinInet) pour la diffusion XRVP&#xa0;: %1</translation>
    </message>
    <message>
        <source>      Using %1 (curl abstraction library) instead of winhhtp.dll</source>
        <translation>      Utilisation de %1 (bibliothèque d’abstraction curl) au lieu de winhhtp.dll</translation>
    </message>
    <message>
        <source>End XRV JPEG 2000 Plugin initialization log</source>
        <translation>Fin du journal d’initialisation du plug-in XRV JPEG 2000</translation>
    </message>
    <message>
        <source>XRV JP2 Error:</source>
        <translation>Erreur XRV JP2&#xa0;:</translation>
    </message>
    <message>
        <source>XRV JPEG 2000 Properties</source>
        <translation>Propriétés XRV JPEG 2000</translation>
    </message>
    <message>
        <source>Add XRVP</source>
        <translation>Ajouter XRVP</translation>
    </message>
    <message>
        <source>TANNIS XRVP Image Stream</source>
        <translation>Flux d’images XRVP TANNIS</translation>
    </message>
    <message>
        <source>Open an XRVP stream from an MILTO TANNIS Server</source>
        <translation>Ouvrir un flux XRVP depuis un serveur MILTO TANNIS</translation>
    </message>
    <message>
        <source>Map View</source>
        <translation>Vue cartographique</translation>
    </message>
    <message>
        <source>Could not get map view from subwindow.</source>
        <translation>Impossible d’obtenir la vue cartographique de la sous-fenêtre.</translation>
    </message>
    <message>
        <source>Error adding layer to view.</source>
        <translation>Erreur lors de l’ajout de la couche à la vue.</translation>
    </message>
</context>
<context>
    <name>XRVJP2kLayerRPCInfo</name>
    <message>
        <source>RPC Info</source>
        <translation>Infos RPC</translation>
    </message>
    <message>
        <source>Rapid Positioning Capability</source>
        <translation>Positionnement rapide (RPC)</translation>
    </message>
    <message>
        <source>Error Bias:</source>
        <translation>Erreur systématique&#xa0;:</translation>
    </message>
    <message>
        <source>Error Random:</source>
        <translation>Erreur aléatoire&#xa0;:</translation>
    </message>
    <message>
        <source>Line Offset:</source>
        <translation>Décalage des lignes&#xa0;:</translation>
    </message>
    <message>
        <source>Line Scale:</source>
        <translation>Échelle des lignes&#xa0;:</translation>
    </message>
    <message>
        <source>Latitude Offset:</source>
        <translation>Décalage en latitude&#xa0;:</translation>
    </message>
    <message>
        <source>Latitude Scale:</source>
        <translation>Échelle en latitude&#xa0;:</translation>
    </message>
    <message>
        <source>Longitude Offset:</source>
        <translation>Décalage en longitude&#xa0;:</translation>
    </message>
    <message>
        <source>Longitude Scale:</source>
        <translation>Échelle en longitude&#xa0;:</translation>
    </message>
    <message>
        <source>Height Offset:</source>
        <translation>Décalage en altitude&#xa0;:</translation>
    </message>
    <message>
        <source>Height Scale:</source>
        <translation>Échelle en altitude&#xa0;:</translation>
    </message>
    <message>
        <source>Sample Offset:</source>
        <translation>Décalage des colonnes&#xa0;:</translation>
    </message>
    <message>
        <source>Sample Scale:</source>
        <translation>Échelle des colonnes&#xa0;:</translation>
    </message>
    <message>
        <source>Coefficients</source>
        <translation>Coefficients</translation>
    </message>
    <message>
        <source>Copy to Clipboard</source>
        <translation>Copier dans le presse-papiers</translation>
    </message>
    <message>
        <source>Line Numerator Coefficients:
</source>
        <translation>Coefficients du numérateur (lignes)&#xa0;:
</translation>
    </message>
    <message>
        <source>Line Denominator Coefficients:
</source>
        <translation>Coefficients du dénominateur (lignes)&#xa0;:
</translation>
    </message>
    <message>
        <source>Sample Numerator Coefficients:
</source>
        <translation>Coefficients du numérateur (colonnes)&#xa0;:
</translation>
    </message>
    <message>
        <source>Sample Denominator Coefficients:
</source>
        <translation>Coefficients du dénominateur (colonnes)&#xa0;:
</translation>
    </message>
    <message>
        <source>Error Bias = %1</source>
        <translation>Erreur systématique = %1</translation>
    </message>
    <message>
        <source>Error Random = %1</source>
        <translation>Erreur aléatoire = %1</translation>
    </message>
    <message>
        <source>Line Offset = %1</source>
        <translation>Décalage des lignes = %1</translation>
    </message>
    <message>
        <source>Line Scale = %1</source>
        <translation>Échelle des lignes = %1</translation>
    </message>
    <message>
        <source>Latitude Offset = %1</source>
        <translation>Décalage en latitude = %1</translation>
    </message>
    <message>
        <source>Latitude Scale = %1</source>
        <translation>Échelle en latitude = %1</translation>
    </message>
    <message>
        <source>Longitude Offset = %1</source>
        <translation>Décalage en longitude = %1</translation>
    </message>
    <message>
        <source>Longitude Scale = %1</source>
        <translation>Échelle en longitude = %1</translation>
    </message>
    <message>
        <source>Height Offset = %1</source>
        <translation>Décalage en altitude = %1</translation>
    </message>
    <message>
        <source>Height Scale = %1</source>
        <translation>Échelle en altitude = %1</translation>
    </message>
    <message>
        <source>Sample Offset = %1</source>
        <translation>Décalage des colonnes = %1</translation>
    </message>
    <message>
        <source>Sample Scale = %1</source>
        <translation>Échelle des colonnes = %1</translation>
    </message>
</context>
<context>
    <name>XRVJP2kLayerStatistics</name>
    <message>
        <source>Statistics</source>
        <translation>Statistiques</translation>
    </message>
    <message>
        <source>Select a Band:</source>
        <translation>Choisir une bande&#xa0;:</translation>
    </message>
    <message>
        <source>Mode:</source>
        <translation>Mode&#xa0;:</translation>
    </message>
    <message>
        <source>Median:</source>
        <translation>Médiane&#xa0;:</translation>
    </message>
    <message>
        <source>Mean:</source>
        <translation>Moyenne&#xa0;:</translation>
    </message>
    <message>
        <source>Standard Deviation:</source>
        <translation>Écart-type&#xa0;:</translation>
    </message>
    <message>
        <source>Minimum Value:</source>
        <translation>Valeur minimale&#xa0;:</translation>
    </message>
    <message>
        <source>Maximum Value:</source>
        <translation>Valeur maximale&#xa0;:</translation>
    </message>
    <message>
        <source>Histogram</source>
        <translation>Histogramme</translation>
    </message>
    <message>
        <source>Copy to Clipboard</source>
        <translation>Copier dans le presse-papiers</translation>
    </message>
    <message>
        <source>Band #%1</source>
        <translation>Bande nº %1</translation>
    </message>
    <message>
        <source>mode = %1</source>
        <translation>mode = %1</translation>
    </message>
    <message>
        <source>median = %1</source>
        <translation>médiane = %1</translation>
    </message>
    <message>
        <source>mean = %1</source>
        <translation>moyenne = %1</translation>
    </message>
    <message>
        <source>stddev = %1</source>
        <translation>écart-type = %1</translation>
    </message>
    <message>
        <source>min = %1</source>
        <translation>min = %1</translation>
    </message>
    <message>
        <source>max = %1</source>
        <translation>max = %1</translation>
    </message>
    <message>
        <source>Histogram Band #%1 = </source>
        <translation>Histogramme de la bande nº %1 = </translation>
    </message>
</context>
<context>
    <name>XRVJP2kPreferences</name>
    <message>
        <source>Choose XRVP Cache Directory</source>
        <translation>Choisir le dossier du cache XRVP</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Erreur</translation>
    </message>
    <message>
        <source>Directory does not exist!</source>
        <translation>Le dossier n’existe pas&#xa0;!</translation>
    </message>
    <message>
        <source>Clearing the XRVP disk cache cannot be undone.

Are you sure you want to clear the disk cache?</source>
        <translation>Le vidage du cache disque XRVP est irréversible.

Voulez-vous vraiment vider le cache disque&#xa0;?</translation>
    </message>
    <message>
        <source>Disk Cache</source>
        <translation>Cache disque</translation>
    </message>
    <message>
        <source>Not all files could be removed. Close all map views before clearing the cache.</source>
        <translation>Certains fichiers n’ont pas pu être supprimés. Fermez toutes les vues cartographiques avant de vider le cache.</translation>
    </message>
    <message>
        <source>Could not open local XRVP cache folder &apos;%1&apos;.</source>
        <translation>Impossible d’ouvrir le dossier local du cache XRVP «&#xa0;%1&#xa0;».</translation>
    </message>
</context>
<context>
    <name>XRVJP2kPreferencesClass</name>
    <message>
        <source>XRV &amp; JP2 Preferences</source>
        <translation>Préférences XRV &amp; JP2</translation>
    </message>
    <message>
        <source>Memory Cache</source>
        <translation>Cache mémoire</translation>
    </message>
    <message>
        <source>More memory will increase performance, less will require more disk or network IO. The recommended amount for your machine is &lt;b&gt;${MEMORY}&lt;/b&gt;</source>
        <translation>Plus de mémoire améliore les performances, moins de mémoire entraîne davantage d’accès au disque ou au réseau. La quantité recommandée pour votre machine est de &lt;b&gt;${MEMORY}&lt;/b&gt;</translation>
    </message>
    <message>
        <source>0.00 MB</source>
        <translation>0.00 MB</translation>
    </message>
    <message>
        <source>Less memory</source>
        <translation>Moins de mémoire</translation>
    </message>
    <message>
        <source>Better performance</source>
        <translation>Meilleures performances</translation>
    </message>
    <message>
        <source>XRVP Disk Cache</source>
        <translation>Cache disque XRVP</translation>
    </message>
    <message>
        <source>Location:</source>
        <translation>Emplacement&#xa0;:</translation>
    </message>
    <message>
        <source>Max Cache Size:</source>
        <translation>Taille maximale&#xa0;:</translation>
    </message>
    <message>
        <source>500 MB</source>
        <translation>500 MB</translation>
    </message>
    <message>
        <source>Cache Used:</source>
        <translation>Cache utilisé&#xa0;:</translation>
    </message>
    <message>
        <source>0 MB</source>
        <translation>0 MB</translation>
    </message>
    <message>
        <source>Clear Disk Cache</source>
        <translation>Vider le cache disque</translation>
    </message>
    <message>
        <source>View Files...</source>
        <translation>Afficher les fichiers...</translation>
    </message>
    <message>
        <source>Default settings for new layers</source>
        <translation>Réglages par défaut des nouvelles couches</translation>
    </message>
    <message>
        <source>%</source>
        <translation>%</translation>
    </message>
    <message>
        <source>Dynamic range adjustment for non 8 bit data</source>
        <translation>Ajustement de la dynamique des données autres que 8 bits</translation>
    </message>
    <message>
        <source>Open images in progressive mode</source>
        <translation>Ouvrir les images en mode progressif</translation>
    </message>
    <message>
        <source>Use bilinear resampling method</source>
        <translation>Utiliser le rééchantillonnage bilinéaire</translation>
    </message>
    <message>
        <source>Use adaptive pan/zoom</source>
        <translation>Déplacement et zoom adaptatifs</translation>
    </message>
    <message>
        <source>Enable texturing when decompressing XRV images</source>
        <translation>Activer la texturation lors de la décompression des images XRV</translation>
    </message>
    <message>
        <source>Use resilient  decoding (attempt to decode invalid files)</source>
        <translation>Utiliser le décodage tolérant (tente de décoder les fichiers non valides)</translation>
    </message>
    <message>
        <source>Use WinHTTP in the XRVP Client</source>
        <translation>Utiliser WinHTTP dans le client XRVP</translation>
    </message>
    <message>
        <source>Log SDK messages to application console</source>
        <translation>Consigner les messages du SDK dans la console de l’application</translation>
    </message>
    <message>
        <source>XRVP HTTP User-Agent:</source>
        <translation>User-Agent HTTP pour XRVP&#xa0;:</translation>
    </message>
    <message>
        <source>&lt;i&gt;Note: you must restart to apply these settings.&lt;/i&gt;</source>
        <translation>&lt;i&gt;Remarque&#xa0;: ces réglages ne prennent effet qu’après un redémarrage.&lt;/i&gt;</translation>
    </message>
    <message>
        <source>Defaults</source>
        <translation>Valeurs par défaut</translation>
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
        <translation>Transparence</translation>
    </message>
    <message>
        <source>Reset to 0% transparency</source>
        <translation>Rétablir la transparence à 0 %</translation>
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
        <translation>Rétablir le contraste à 100 %</translation>
    </message>
    <message>
        <source>Brightness</source>
        <translation>Luminosité</translation>
    </message>
    <message>
        <source>Reset to 100% brightness</source>
        <translation>Rétablir la luminosité à 100 %</translation>
    </message>
    <message>
        <source>Dynamic Range Adjustment</source>
        <translation>Ajustement de la dynamique</translation>
    </message>
    <message>
        <source>Reset to default dynamic range</source>
        <translation>Rétablir la dynamique par défaut</translation>
    </message>
    <message>
        <source>JPEG 2000 Quality Layers</source>
        <translation>Couches de qualité JPEG 2000</translation>
    </message>
    <message>
        <source>Reset to max quality layers</source>
        <translation>Rétablir le nombre maximal de couches de qualité</translation>
    </message>
    <message>
        <source>Bands</source>
        <translation>Bandes</translation>
    </message>
    <message>
        <source>Red:</source>
        <translation>Rouge&#xa0;:</translation>
    </message>
    <message>
        <source>Green:</source>
        <translation>Vert&#xa0;:</translation>
    </message>
    <message>
        <source>Blue:</source>
        <translation>Bleu&#xa0;:</translation>
    </message>
    <message>
        <source>Opacity:</source>
        <translation>Opacité&#xa0;:</translation>
    </message>
    <message>
        <source>Display</source>
        <translation>Affichage</translation>
    </message>
    <message>
        <source>Use progressive rendering</source>
        <translation>Utiliser le rendu progressif</translation>
    </message>
    <message>
        <source>Use adaptive pan/zoom</source>
        <translation>Déplacement et zoom adaptatifs</translation>
    </message>
    <message>
        <source>Use backing store</source>
        <translation>Utiliser une mémoire d’arrière-plan</translation>
    </message>
    <message>
        <source>Enable texture/dither (XRV only)</source>
        <translation>Texture/tramage (XRV seulement)</translation>
    </message>
    <message>
        <source>Draw outline</source>
        <translation>Tracer le contour</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>Couleur</translation>
    </message>
    <message>
        <source>Resample Method:</source>
        <translation>Interpolation&#xa0;:</translation>
    </message>
    <message>
        <source>Nearest Neighbour</source>
        <translation>Plus proche voisin</translation>
    </message>
    <message>
        <source>Bilinear</source>
        <translation>Bilinéaire</translation>
    </message>
    <message>
        <source>Advanced</source>
        <translation>Avancé</translation>
    </message>
    <message>
        <source>Flush memory cache when closing images</source>
        <translation>Vider le cache à la fermeture</translation>
    </message>
    <message>
        <source>Read Line Method</source>
        <translation>Méthode de lecture des lignes</translation>
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
        <translation>Ombrage</translation>
    </message>
    <message>
        <source>Enable hillshade for layer</source>
        <translation>Activer l’ombrage pour la couche</translation>
    </message>
    <message>
        <source>Azumith:</source>
        <translation>Azimut&#xa0;:</translation>
    </message>
    <message>
        <source>Elevation:</source>
        <translation>Élévation&#xa0;:</translation>
    </message>
</context>
</TS>
