<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja" sourcelanguage="en_US">
<context>
    <name>AboutBox</name>
    <message>
        <source>Shows very large wavelet-compressed images from files and image servers.</source>
        <translation>ファイルや画像サーバーの、ウェーブレット圧縮された非常に大きな画像を表示します。</translation>
    </message>
    <message>
        <source>No layer plug-in is loaded.</source>
        <translation>レイヤープラグインが読み込まれていません。</translation>
    </message>
    <message>
        <source>Plug-ins:</source>
        <translation>プラグイン:</translation>
    </message>
    <message>
        <source>About %1</source>
        <translation>%1 について</translation>
    </message>
</context>
<context>
    <name>FailureReport</name>
    <message numerus="yes">
        <source>%1 of %n sources could not be opened.</source>
        <translation>
            <numerusform>%n 個のソースのうち %1 個を開けませんでした。</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>... and %n more (see the details)</source>
        <translation>
            <numerusform>... 他 %n 件 (詳細を参照)</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>LayerOpener</name>
    <message>
        <source>%1 cannot be opened: no layer plug-in is loaded. %2</source>
        <translation>%1 を開けません。レイヤープラグインが読み込まれていません。%2</translation>
    </message>
    <message>
        <source>the format is not known</source>
        <translation>不明な形式です</translation>
    </message>
    <message>
        <source>%1 cannot be opened: %2</source>
        <translation>%1 を開けません: %2</translation>
    </message>
</context>
<context>
    <name>ProjectReader</name>
    <message>
        <source>The project %1 cannot be read: %2.</source>
        <translation>プロジェクト %1 を読み取れません: %2</translation>
    </message>
    <message>
        <source>%1 is too large to be a project.</source>
        <translation>%1 はプロジェクトとしては大きすぎます。</translation>
    </message>
    <message>
        <source>%1 is not a project: %2 in line %3, column %4.</source>
        <translation>%1 はプロジェクトではありません: %2 (%3 行目、%4 列目)</translation>
    </message>
    <message>
        <source>%1 is an XML file, but not a project.</source>
        <translation>%1 は XML ファイルですが、プロジェクトではありません。</translation>
    </message>
    <message>
        <source>The project %1 does not tell its version.</source>
        <translation>プロジェクト %1 にバージョンが記録されていません。</translation>
    </message>
    <message>
        <source>The project %1 was written by a newer version of this program.</source>
        <translation>プロジェクト %1 は、このプログラムの新しいバージョンで保存されています。</translation>
    </message>
    <message>
        <source>A view has no valid extent and is shown whole.</source>
        <translation>有効な表示範囲のないビューがあるため、全体を表示します。</translation>
    </message>
    <message>
        <source>A layer of the project does not tell its kind.</source>
        <translation>プロジェクトのレイヤーに種類が記録されていません。</translation>
    </message>
    <message>
        <source>No loaded plug-in makes layers of the kind %1.</source>
        <translation>%1 という種類のレイヤーを作成するプラグインが読み込まれていません。</translation>
    </message>
    <message>
        <source>A layer of the kind %1 cannot be restored.</source>
        <translation>%1 という種類のレイヤーを復元できません。</translation>
    </message>
    <message>
        <source>%1 is too large to be a project: it has more than %2 elements and attributes, or more than %3 levels of them.</source>
        <translation>%1 はプロジェクトとしては大きすぎます。要素と属性が %2 個を超えるか、その階層が %3 段を超えています。</translation>
    </message>
</context>
<context>
    <name>ProjectWriter</name>
    <message>
        <source>%1 cannot be written: %2</source>
        <translation>%1 に書き込めません: %2</translation>
    </message>
</context>
<context>
    <name>Viewer</name>
    <message>
        <source>No layer plug-in was found in %1.</source>
        <translation>%1 にレイヤープラグインが見つかりませんでした。</translation>
    </message>
</context>
<context>
    <name>Viewer::Geographic</name>
    <message>
        <source>%1° W</source>
        <translation>西経 %1°</translation>
    </message>
    <message>
        <source>%1° E</source>
        <translation>東経 %1°</translation>
    </message>
    <message>
        <source>%1° S</source>
        <translation>南緯 %1°</translation>
    </message>
    <message>
        <source>%1° N</source>
        <translation>北緯 %1°</translation>
    </message>
</context>
<context>
    <name>Viewer::IdentifyDock</name>
    <message>
        <source>Identify</source>
        <translation>地点情報</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名前</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>値</translation>
    </message>
    <message>
        <source>Click on the map to see what lies there.</source>
        <translation>地図をクリックすると、その地点の内容が表示されます。</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>コピー(&amp;C)</translation>
    </message>
    <message>
        <source>Place</source>
        <translation>地点</translation>
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
        <translation>読み取り中...</translation>
    </message>
    <message>
        <source>lies elsewhere</source>
        <translation>この地点にはありません</translation>
    </message>
    <message>
        <source>Column, row</source>
        <translation>列, 行</translation>
    </message>
    <message>
        <source>Band %1</source>
        <translation>バンド %1</translation>
    </message>
    <message>
        <source>Longitude</source>
        <translation>経度</translation>
    </message>
    <message>
        <source>Latitude</source>
        <translation>緯度</translation>
    </message>
</context>
<context>
    <name>Viewer::LayerListDock</name>
    <message>
        <source>Layers</source>
        <translation>レイヤー</translation>
    </message>
    <message>
        <source>&amp;Zoom to Layer</source>
        <translation>レイヤー全体を表示(&amp;Z)</translation>
    </message>
    <message>
        <source>Show all of this layer</source>
        <translation>このレイヤーの全体を表示します</translation>
    </message>
    <message>
        <source>Zoom to &amp;1:1</source>
        <translation>1:1 で表示(&amp;1)</translation>
    </message>
    <message>
        <source>Show this layer with one cell per pixel</source>
        <translation>このレイヤーを 1 ピクセルあたり 1 セルで表示します</translation>
    </message>
    <message>
        <source>Move &amp;Up</source>
        <translation>上へ移動(&amp;U)</translation>
    </message>
    <message>
        <source>Move the layer up</source>
        <translation>レイヤーを上へ移動します</translation>
    </message>
    <message>
        <source>Move &amp;Down</source>
        <translation>下へ移動(&amp;D)</translation>
    </message>
    <message>
        <source>Move the layer down</source>
        <translation>レイヤーを下へ移動します</translation>
    </message>
    <message>
        <source>Move to &amp;Top</source>
        <translation>一番上へ移動(&amp;T)</translation>
    </message>
    <message>
        <source>Move to &amp;Bottom</source>
        <translation>一番下へ移動(&amp;B)</translation>
    </message>
    <message>
        <source>Re&amp;name</source>
        <translation>名前を変更(&amp;N)</translation>
    </message>
    <message>
        <source>&amp;Copy File Name or Address</source>
        <translation>ファイル名またはアドレスをコピー(&amp;C)</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>取り除く(&amp;R)</translation>
    </message>
    <message>
        <source>Remove the layer from the view</source>
        <translation>レイヤーをビューから取り除きます</translation>
    </message>
    <message>
        <source>&amp;Properties...</source>
        <translation>プロパティ(&amp;P)...</translation>
    </message>
    <message>
        <source>What is known of this layer</source>
        <translation>このレイヤーの情報を表示します</translation>
    </message>
</context>
<context>
    <name>Viewer::LayerListModel</name>
    <message>
        <source>%1 × %2 cells</source>
        <translation>%1 × %2 セル</translation>
    </message>
</context>
<context>
    <name>Viewer::LayerSummaryPage</name>
    <message>
        <source>General</source>
        <translation>全般</translation>
    </message>
    <message>
        <source>Source:</source>
        <translation>ソース:</translation>
    </message>
    <message>
        <source>Format:</source>
        <translation>形式:</translation>
    </message>
    <message>
        <source>Access:</source>
        <translation>アクセス:</translation>
    </message>
    <message>
        <source>Coordinate system:</source>
        <translation>座標系:</translation>
    </message>
    <message>
        <source>First corner:</source>
        <translation>始点の隅:</translation>
    </message>
    <message>
        <source>Opposite corner:</source>
        <translation>対角の隅:</translation>
    </message>
    <message>
        <source>Comments:</source>
        <translation>コメント:</translation>
    </message>
    <message>
        <source>Size in cells:</source>
        <translation>サイズ (セル数):</translation>
    </message>
    <message>
        <source>Cell size:</source>
        <translation>セルサイズ:</translation>
    </message>
    <message>
        <source>Cell type:</source>
        <translation>セルの種類:</translation>
    </message>
    <message>
        <source>Bands:</source>
        <translation>バンド数:</translation>
    </message>
    <message>
        <source>Rotation:</source>
        <translation>回転:</translation>
    </message>
    <message>
        <source>%1° clockwise</source>
        <translation>時計回りに %1°</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <extracomment>Two numbers, which must be told apart where the comma is the decimal point.</extracomment>
        <translation>%1, %2</translation>
    </message>
</context>
<context>
    <name>Viewer::LogDock</name>
    <message>
        <source>Log</source>
        <translation>ログ</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>コピー(&amp;C)</translation>
    </message>
    <message>
        <source>Copies the selected lines, or all that are shown</source>
        <translation>選択した行、または表示中のすべての行をコピーします</translation>
    </message>
    <message>
        <source>C&amp;lear</source>
        <translation>クリア(&amp;L)</translation>
    </message>
    <message>
        <source>The least severe messages that are shown, and logged from now on</source>
        <translation>表示するメッセージ、および今後記録するメッセージの最低の重要度</translation>
    </message>
    <message>
        <source>Fro&amp;m level:</source>
        <translation>表示レベル(&amp;M):</translation>
    </message>
</context>
<context>
    <name>Viewer::LogModel</name>
    <message>
        <source>Time</source>
        <translation>時刻</translation>
    </message>
    <message>
        <source>Level</source>
        <translation>レベル</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>メッセージ</translation>
    </message>
</context>
<context>
    <name>Viewer::MainActions</name>
    <message>
        <source>&amp;Open...</source>
        <translation>開く(&amp;O)...</translation>
    </message>
    <message>
        <source>Open images in the current view</source>
        <translation>現在のビューで画像を開きます</translation>
    </message>
    <message>
        <source>Open in Ne&amp;w View...</source>
        <translation>新しいビューで開く(&amp;W)...</translation>
    </message>
    <message>
        <source>Open images in a view of their own</source>
        <translation>専用のビューで画像を開きます</translation>
    </message>
    <message>
        <source>&amp;New View</source>
        <translation>新しいビュー(&amp;N)</translation>
    </message>
    <message>
        <source>Add an empty map view</source>
        <translation>空のマップビューを追加します</translation>
    </message>
    <message>
        <source>Open &amp;Project...</source>
        <translation>プロジェクトを開く(&amp;P)...</translation>
    </message>
    <message>
        <source>Replace all views by those of a project</source>
        <translation>すべてのビューをプロジェクトのビューに置き換えます</translation>
    </message>
    <message>
        <source>&amp;Save Project</source>
        <translation>プロジェクトを保存(&amp;S)</translation>
    </message>
    <message>
        <source>Save all views and their layers</source>
        <translation>すべてのビューとレイヤーを保存します</translation>
    </message>
    <message>
        <source>Save Project &amp;As...</source>
        <translation>名前を付けてプロジェクトを保存(&amp;A)...</translation>
    </message>
    <message>
        <source>Save all views and their layers in another file</source>
        <translation>すべてのビューとレイヤーを別のファイルに保存します</translation>
    </message>
    <message>
        <source>Save P&amp;icture...</source>
        <translation>画像を保存(&amp;I)...</translation>
    </message>
    <message>
        <source>Save what the current view shows as a picture</source>
        <translation>現在のビューの表示内容を画像として保存します</translation>
    </message>
    <message>
        <source>Pre&amp;ferences...</source>
        <translation>設定(&amp;F)...</translation>
    </message>
    <message>
        <source>Settings of the plug-ins</source>
        <translation>プラグインの設定</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>終了(&amp;Q)</translation>
    </message>
    <message>
        <source>About &amp;Qt</source>
        <translation>Qt について(&amp;Q)</translation>
    </message>
    <message>
        <source>Zoom &amp;In</source>
        <translation>拡大(&amp;I)</translation>
    </message>
    <message>
        <source>Show the map larger</source>
        <translation>地図を拡大して表示します</translation>
    </message>
    <message>
        <source>Zoom &amp;Out</source>
        <translation>縮小(&amp;O)</translation>
    </message>
    <message>
        <source>Show the map smaller</source>
        <translation>地図を縮小して表示します</translation>
    </message>
    <message>
        <source>Zoom to &amp;All</source>
        <translation>全体を表示(&amp;A)</translation>
    </message>
    <message>
        <source>Show all layers of the view</source>
        <translation>ビューのすべてのレイヤーを表示します</translation>
    </message>
    <message>
        <source>Zoom to &amp;Layer</source>
        <translation>レイヤー全体を表示(&amp;L)</translation>
    </message>
    <message>
        <source>Show all of the selected layer</source>
        <translation>選択したレイヤーの全体を表示します</translation>
    </message>
    <message>
        <source>Zoom to &amp;1:1</source>
        <translation>1:1 で表示(&amp;1)</translation>
    </message>
    <message>
        <source>Show one cell of the selected layer per pixel</source>
        <translation>選択したレイヤーを 1 ピクセルあたり 1 セルで表示します</translation>
    </message>
    <message>
        <source>Layer &amp;Properties...</source>
        <translation>レイヤーのプロパティ(&amp;P)...</translation>
    </message>
    <message>
        <source>What is known of the selected layer</source>
        <translation>選択したレイヤーの情報を表示します</translation>
    </message>
    <message>
        <source>&amp;Tabs</source>
        <translation>タブ(&amp;T)</translation>
    </message>
    <message>
        <source>Show one view at a time, in tabs</source>
        <translation>ビューをタブで 1 つずつ表示します</translation>
    </message>
    <message>
        <source>&amp;Cascade</source>
        <translation>重ねて表示(&amp;C)</translation>
    </message>
    <message>
        <source>Show the views as windows, one behind the other</source>
        <translation>ビューをウィンドウとして重ねて表示します</translation>
    </message>
    <message>
        <source>T&amp;ile</source>
        <translation>並べて表示(&amp;I)</translation>
    </message>
    <message>
        <source>Show the views as windows, side by side</source>
        <translation>ビューをウィンドウとして並べて表示します</translation>
    </message>
    <message>
        <source>Ne&amp;xt View</source>
        <translation>次のビュー(&amp;X)</translation>
    </message>
    <message>
        <source>&amp;Rename View...</source>
        <translation>ビューの名前を変更(&amp;R)...</translation>
    </message>
    <message>
        <source>Cl&amp;ose View</source>
        <translation>ビューを閉じる(&amp;O)</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>表示(&amp;V)</translation>
    </message>
    <message>
        <source>&amp;Window</source>
        <translation>ウィンドウ(&amp;W)</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>ヘルプ(&amp;H)</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>ファイル(&amp;F)</translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation>最近使った項目を開く(&amp;R)</translation>
    </message>
    <message>
        <source>Open Recent Pro&amp;ject</source>
        <translation>最近使ったプロジェクトを開く(&amp;J)</translation>
    </message>
    <message>
        <source>Main</source>
        <translation>メインツールバー</translation>
    </message>
    <message>
        <source>&amp;About %1</source>
        <translation>%1 について(&amp;A)</translation>
    </message>
    <message>
        <source>&amp;Copy Picture</source>
        <translation>画像をコピー(&amp;C)</translation>
    </message>
    <message>
        <source>Put what the current view shows into the clipboard</source>
        <translation>現在のビューの表示内容をクリップボードに入れます</translation>
    </message>
    <message>
        <source>&amp;Full Screen</source>
        <translation>全画面表示(&amp;F)</translation>
    </message>
    <message>
        <source>Fill the screen with the window</source>
        <translation>ウィンドウを画面いっぱいに広げます</translation>
    </message>
    <message>
        <source>Next &amp;Panel</source>
        <translation>次のパネル(&amp;P)</translation>
    </message>
    <message>
        <source>Give the keyboard to the next panel</source>
        <translation>次のパネルにキーボードを移します</translation>
    </message>
    <message>
        <source>Pre&amp;vious Panel</source>
        <translation>前のパネル(&amp;V)</translation>
    </message>
    <message>
        <source>Give the keyboard to the panel before</source>
        <translation>前のパネルにキーボードを移します</translation>
    </message>
    <message>
        <source>&amp;Back</source>
        <translation>戻る(&amp;B)</translation>
    </message>
    <message>
        <source>Show what the view showed before</source>
        <translation>ビューが前に表示していた場所を表示します</translation>
    </message>
    <message>
        <source>Fo&amp;rward</source>
        <translation>進む(&amp;R)</translation>
    </message>
    <message>
        <source>Show what the view showed before going back</source>
        <translation>戻る前にビューが表示していた場所を表示します</translation>
    </message>
    <message>
        <source>&amp;Go to Coordinates...</source>
        <translation>座標へ移動(&amp;G)...</translation>
    </message>
    <message>
        <source>Show a place in the middle of the view</source>
        <translation>指定した地点をビューの中央に表示します</translation>
    </message>
</context>
<context>
    <name>Viewer::MainWindow</name>
    <message>
        <source>Open</source>
        <translation>開く</translation>
    </message>
    <message>
        <source>Open in New View</source>
        <translation>新しいビューで開く</translation>
    </message>
    <message>
        <source>%1 cannot be shown.</source>
        <translation>%1 を表示できません。</translation>
    </message>
    <message>
        <source>Save Picture</source>
        <translation>画像を保存</translation>
    </message>
    <message>
        <source>PNG images (*.png)</source>
        <translation>PNG 画像 (*.png)</translation>
    </message>
    <message>
        <source>Rename View</source>
        <translation>ビューの名前を変更</translation>
    </message>
    <message>
        <source>Title (empty: the layer&apos;s name):</source>
        <translation>タイトル (空の場合はレイヤー名):</translation>
    </message>
    <message>
        <source>JPEG images (*.jpg *.jpeg)</source>
        <translation>JPEG 画像 (*.jpg *.jpeg)</translation>
    </message>
    <message>
        <source>Go to Coordinates</source>
        <translation>座標へ移動</translation>
    </message>
    <message>
        <source>X and Y, or latitude and longitude, such as 46.72 N 9.92 E:</source>
        <translation>X と Y、または 46.72 N 9.92 E のような緯度と経度:</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is no place that can be shown here.</source>
        <translation>「%1」はここで表示できる地点ではありません。</translation>
    </message>
</context>
<context>
    <name>Viewer::MapArea</name>
    <message>
        <source>View %1</source>
        <translation>ビュー %1</translation>
    </message>
</context>
<context>
    <name>Viewer::MapMenu</name>
    <message>
        <source>&amp;What Is Here?</source>
        <translation>ここには何がある(&amp;W)</translation>
    </message>
    <message>
        <source>&amp;Copy Coordinates %1</source>
        <translation>座標 %1 をコピー(&amp;C)</translation>
    </message>
    <message>
        <source>C&amp;entre Here</source>
        <translation>ここを中心にする(&amp;E)</translation>
    </message>
</context>
<context>
    <name>Viewer::MapNotices</name>
    <message>
        <source>%1 lies outside the view.</source>
        <translation>%1 はビューの外にあります。</translation>
    </message>
    <message>
        <source>Zoom to Layer</source>
        <translation>レイヤーに合わせる</translation>
    </message>
    <message>
        <source>%1 is damaged and shown as well as can be: %2</source>
        <translation>%1 は破損しており、可能な範囲で表示しています: %2</translation>
    </message>
    <message>
        <source>The connection is lost: %1</source>
        <translation>接続が失われました: %1</translation>
    </message>
    <message>
        <source>Reconnect</source>
        <translation>再接続</translation>
    </message>
    <message>
        <source>Open Again</source>
        <translation>開き直す</translation>
    </message>
    <message>
        <source>Hide this message</source>
        <translation>このメッセージを隠す</translation>
    </message>
</context>
<context>
    <name>Viewer::Pictures</name>
    <message>
        <source>The picture %1 cannot be written: %2</source>
        <translation>画像 %1 を書き込めません: %2</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is no format for pictures; take png or jpg.</source>
        <translation>「%1」は画像の形式ではありません。png か jpg を使ってください。</translation>
    </message>
</context>
<context>
    <name>Viewer::PreferencesDialog</name>
    <message>
        <source>Preferences</source>
        <translation>設定</translation>
    </message>
    <message>
        <source>No loaded plug-in has preferences.</source>
        <translation>設定項目のあるプラグインは読み込まれていません。</translation>
    </message>
</context>
<context>
    <name>Viewer::ProjectDialogs</name>
    <message>
        <source>Projects (*%1)</source>
        <translation>プロジェクト (*%1)</translation>
    </message>
    <message>
        <source>Open Project</source>
        <translation>プロジェクトを開く</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>すべてのファイル (*)</translation>
    </message>
    <message>
        <source>Save Project</source>
        <translation>プロジェクトを保存</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>プロジェクト</translation>
    </message>
    <message>
        <source>The project %1 was changed. Save the changes?</source>
        <translation>プロジェクト %1 は変更されています。変更を保存しますか?</translation>
    </message>
    <message>
        <source>Settings of layers were changed. Save them as a project?</source>
        <translation>レイヤーの設定が変更されました。プロジェクトとして保存しますか?</translation>
    </message>
</context>
<context>
    <name>Viewer::PropertiesWindow</name>
    <message>
        <source>Properties of %1</source>
        <translation>%1 のプロパティ</translation>
    </message>
</context>
<context>
    <name>Viewer::RecentSources</name>
    <message>
        <source>&amp;Clear List</source>
        <translation>一覧を消去(&amp;C)</translation>
    </message>
</context>
<context>
    <name>Viewer::Sources</name>
    <message>
        <source>%1 is a link to a file that does not exist.</source>
        <translation>%1 は存在しないファイルへのリンクです。</translation>
    </message>
    <message>
        <source>%1 does not exist.</source>
        <translation>%1 は存在しません。</translation>
    </message>
    <message>
        <source>%1 is a folder, not an image.</source>
        <translation>%1 はフォルダーであり、画像ではありません。</translation>
    </message>
    <message>
        <source>%1 is not an ordinary file.</source>
        <translation>%1 は通常のファイルではありません。</translation>
    </message>
    <message>
        <source>%1 cannot be read: %2.</source>
        <translation>%1 を読み取れません: %2</translation>
    </message>
    <message>
        <source>%1 is empty.</source>
        <translation>%1 は空です。</translation>
    </message>
</context>
<context>
    <name>Viewer::StatisticsBar</name>
    <message>
        <source>The statistics are an estimate. All cells are being counted: %1 %</source>
        <translation>統計は推定値です。すべてのセルを数えています: %1 %</translation>
    </message>
    <message>
        <source>The statistics are an estimate from a part of the cells.</source>
        <translation>統計は一部のセルからの推定値です。</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>キャンセル</translation>
    </message>
    <message>
        <source>Count All Cells</source>
        <translation>すべてのセルを数える</translation>
    </message>
</context>
<context>
    <name>Viewer::ValueTexts</name>
    <message>
        <source>no number</source>
        <translation>数値なし</translation>
    </message>
</context>
<context>
    <name>Viewer::ViewCommands</name>
    <message>
        <source>The view did not become complete in time; there is no picture of it.</source>
        <translation>ビューが時間内に完成しなかったため、画像はありません。</translation>
    </message>
</context>
<context>
    <name>Viewer::ViewStatus</name>
    <message>
        <source>How much of the view is decoded</source>
        <translation>ビューのデコードの進み具合</translation>
    </message>
    <message>
        <source>World coordinates under the pointer</source>
        <translation>ポインター位置のワールド座標</translation>
    </message>
    <message>
        <source>Coordinate system of the active layer</source>
        <translation>アクティブなレイヤーの座標系</translation>
    </message>
    <message>
        <source>Screen pixels per cell of the active layer, and world units per screen pixel</source>
        <translation>アクティブなレイヤーの 1 セルあたりの画面ピクセル数、および画面 1 ピクセルあたりのワールド単位</translation>
    </message>
    <message>
        <source>Values of the shown bands under the pointer</source>
        <translation>ポインター位置での表示バンドの値</translation>
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
        <translation>%1%</translation>
    </message>
    <message>
        <source>%1 units per pixel</source>
        <translation>%1 単位/ピクセル</translation>
    </message>
</context>
</TS>
