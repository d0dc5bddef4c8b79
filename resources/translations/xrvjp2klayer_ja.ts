<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja" sourcelanguage="en_US">
<context>
    <name>Korvane::XRVJP2kLayer</name>
    <message>
        <source>Unknown</source>
        <translation>不明</translation>
    </message>
    <message>
        <source>Local XRV file</source>
        <translation>ローカル XRV ファイル</translation>
    </message>
    <message>
        <source>Local JPEG 2000 file</source>
        <translation>ローカル JPEG 2000 ファイル</translation>
    </message>
    <message>
        <source>Local file</source>
        <translation>ローカルファイル</translation>
    </message>
    <message>
        <source>Unknown progression order</source>
        <translation>不明なプログレッション順序</translation>
    </message>
    <message>
        <source>Could not open URL file.</source>
        <translation>URL ファイルを開けませんでした。</translation>
    </message>
    <message>
        <source>URL file contains non supported protocol type.</source>
        <translation>URL ファイルにサポートされていない種類のプロトコルが含まれています。</translation>
    </message>
    <message>
        <source>JPIP protocol not supported.</source>
        <translation>JPIP プロトコルはサポートされていません。</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%2 中 %1</translation>
    </message>
    <message>
        <source>Open Stream</source>
        <translation>ストリームを開く</translation>
    </message>
    <message>
        <source>Opening %1 from %2...</source>
        <translation>%2 から %1 を開いています...</translation>
    </message>
    <message>
        <source>The opening was cancelled.</source>
        <translation>開く操作はキャンセルされました。</translation>
    </message>
    <message>
        <source>Images that reach beyond 2147483647 cells are not supported.</source>
        <translation>2147483647 セルを超える画像には対応していません。</translation>
    </message>
    <message>
        <source>JPEG 2000 compound documents are not supported.</source>
        <translation>JPEG 2000 複合文書には対応していません。</translation>
    </message>
    <message>
        <source>Motion JPEG 2000 files are not supported.</source>
        <translation>Motion JPEG 2000 ファイルには対応していません。</translation>
    </message>
    <message>
        <source>The JPEG 2000 codestream ends within its main header.</source>
        <translation>JPEG 2000 コードストリームがメインヘッダーの途中で終わっています。</translation>
    </message>
    <message>
        <source>The XRV file ends before its version.</source>
        <translation>XRV ファイルがバージョンの前で終わっています。</translation>
    </message>
    <message>
        <source>The XRV file has no version.</source>
        <translation>XRV ファイルにバージョンがありません。</translation>
    </message>
    <message>
        <source>The codestream of the XRV file does not hold the cells that the file describes.</source>
        <translation>XRV ファイルのコードストリームには、ファイルが記述するセルが含まれていません。</translation>
    </message>
    <message>
        <source>What the XRV file says of its cells is damaged.</source>
        <translation>XRV ファイルのセルに関する記述が破損しています。</translation>
    </message>
    <message>
        <source>The codestream lies in another file, which is not supported.</source>
        <translation>コードストリームが別のファイルにあり、これには対応していません。</translation>
    </message>
    <message>
        <source>The codestream lies in scattered pieces, which is not supported.</source>
        <translation>コードストリームが離れた部分に分かれており、これには対応していません。</translation>
    </message>
    <message>
        <source>The file ends before its codestream begins.</source>
        <translation>ファイルがコードストリームの始まる前に終わっています。</translation>
    </message>
    <message>
        <source>The file has no JPEG 2000 codestream.</source>
        <translation>ファイルに JPEG 2000 コードストリームがありません。</translation>
    </message>
    <message>
        <source>The file is empty.</source>
        <translation>ファイルが空です。</translation>
    </message>
    <message>
        <source>The file is not a JPEG 2000 file.</source>
        <translation>このファイルは JPEG 2000 ファイルではありません。</translation>
    </message>
    <message>
        <source>The file is not an XRV image.</source>
        <translation>このファイルは XRV 画像ではありません。</translation>
    </message>
    <message>
        <source>The fragment table of the codestream is damaged.</source>
        <translation>コードストリームの断片表が壊れています。</translation>
    </message>
    <message>
        <source>The server sent a page or a message, not an image.</source>
        <translation>サーバーが画像ではなくページまたはメッセージを送ってきました。</translation>
    </message>
    <message>
        <source>This file is not an XRV image that this library can read.</source>
        <translation>このファイルは、このライブラリが読み取れる XRV 画像ではありません。</translation>
    </message>
    <message>
        <source>There is no thread to spare for reading values.</source>
        <translation>値を読み取るためのスレッドに空きがありません。</translation>
    </message>
</context>
<context>
    <name>XRVJP2LayerMetaDataBox</name>
    <message>
        <source>Metadata</source>
        <translation>メタデータ</translation>
    </message>
    <message>
        <source>Metadata Boxes</source>
        <translation>メタデータボックス</translation>
    </message>
    <message>
        <source>Box Id:</source>
        <translation>ボックス ID:</translation>
    </message>
</context>
<context>
    <name>XRVJP2kLayerFileInfo</name>
    <message>
        <source>XRV Info</source>
        <translation>XRV 情報</translation>
    </message>
    <message>
        <source>XRV JP2 Compression Info</source>
        <translation>XRV・JP2 圧縮情報</translation>
    </message>
    <message>
        <source>XRVP Version:</source>
        <translation>XRVP バージョン:</translation>
    </message>
    <message>
        <source>File Format Version</source>
        <translation>ファイル形式のバージョン</translation>
    </message>
    <message>
        <source>GDT Datum:</source>
        <translation>GDT 測地系:</translation>
    </message>
    <message>
        <source>GDT Projection:</source>
        <translation>GDT 投影法:</translation>
    </message>
    <message>
        <source>GDT Units:</source>
        <translation>GDT 単位:</translation>
    </message>
    <message>
        <source>Compressed Size:</source>
        <translation>圧縮後のサイズ:</translation>
    </message>
    <message>
        <source>Uncompressed Size:</source>
        <translation>圧縮前のサイズ:</translation>
    </message>
    <message>
        <source>Target Compression Rate:</source>
        <translation>目標圧縮率:</translation>
    </message>
    <message>
        <source>Actual Compression Rate:</source>
        <translation>実際の圧縮率:</translation>
    </message>
    <message>
        <source>Block Size:</source>
        <translation>ブロックサイズ:</translation>
    </message>
    <message>
        <source>Compression Date:</source>
        <translation>圧縮日:</translation>
    </message>
    <message>
        <source>Classification:</source>
        <translation>機密区分:</translation>
    </message>
    <message>
        <source>Acquisition Date:</source>
        <translation>取得日:</translation>
    </message>
    <message>
        <source>Acquisition Sensor Name:</source>
        <translation>取得センサー名:</translation>
    </message>
    <message>
        <source>Compression Software:</source>
        <translation>圧縮ソフトウェア:</translation>
    </message>
    <message>
        <source>Author:</source>
        <translation>作成者:</translation>
    </message>
    <message>
        <source>Copyright:</source>
        <translation>著作権:</translation>
    </message>
    <message>
        <source>Company:</source>
        <translation>会社:</translation>
    </message>
    <message>
        <source>Email:</source>
        <translation>電子メール:</translation>
    </message>
    <message>
        <source>Address:</source>
        <translation>住所:</translation>
    </message>
    <message>
        <source>Telephone:</source>
        <translation>電話番号:</translation>
    </message>
    <message>
        <source>Copy to Clipboard</source>
        <translation>クリップボードにコピー</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>不明</translation>
    </message>
    <message>
        <source>Not valid for .jp2 files</source>
        <translation>.jp2 ファイルでは無効</translation>
    </message>
    <message>
        <source>XRVP Version = %1</source>
        <translation>XRVP バージョン = %1</translation>
    </message>
    <message>
        <source>Local file</source>
        <translation>ローカルファイル</translation>
    </message>
    <message>
        <source>Format Version = %1</source>
        <translation>形式のバージョン = %1</translation>
    </message>
    <message>
        <source>GDT Datum = %1</source>
        <translation>GDT 測地系 = %1</translation>
    </message>
    <message>
        <source>GDT Projection = %1</source>
        <translation>GDT 投影法 = %1</translation>
    </message>
    <message>
        <source>GDT Units = %1</source>
        <translation>GDT 単位 = %1</translation>
    </message>
    <message>
        <source>Compressed Size = %1</source>
        <translation>圧縮後のサイズ = %1</translation>
    </message>
    <message>
        <source>Uncompressed Size = %1</source>
        <translation>圧縮前のサイズ = %1</translation>
    </message>
    <message>
        <source>Target Compression Rate = %1:1</source>
        <translation>目標圧縮率 = %1:1</translation>
    </message>
    <message>
        <source>Actual Compression Ratio = %1</source>
        <translation>実際の圧縮比 = %1</translation>
    </message>
    <message>
        <source>Compression Date = %1</source>
        <translation>圧縮日 = %1</translation>
    </message>
    <message>
        <source>Classification = %1</source>
        <translation>機密区分 = %1</translation>
    </message>
    <message>
        <source>Acquisition Date = %1</source>
        <translation>取得日 = %1</translation>
    </message>
    <message>
        <source>Acquisition Sensor Name = %1</source>
        <translation>取得センサー名 = %1</translation>
    </message>
    <message>
        <source>Compression Software = %1</source>
        <translation>圧縮ソフトウェア = %1</translation>
    </message>
    <message>
        <source>Author = %1</source>
        <translation>作成者 = %1</translation>
    </message>
    <message>
        <source>Copyright = %1</source>
        <translation>著作権 = %1</translation>
    </message>
    <message>
        <source>Company = %1</source>
        <translation>会社 = %1</translation>
    </message>
    <message>
        <source>Email = %1</source>
        <translation>電子メール = %1</translation>
    </message>
    <message>
        <source>Address = %1</source>
        <translation>住所 = %1</translation>
    </message>
    <message>
        <source>Telephone = %1</source>
        <translation>電話番号 = %1</translation>
    </message>
</context>
<context>
    <name>XRVJP2kLayerJP2FileInfo</name>
    <message>
        <source>JP2 Info</source>
        <translation>JP2 情報</translation>
    </message>
    <message>
        <source>JPEG 2000 Header Info</source>
        <translation>JPEG 2000 ヘッダー情報</translation>
    </message>
    <message>
        <source>Comments:</source>
        <translation>コメント:</translation>
    </message>
    <message>
        <source>Profile:</source>
        <translation>プロファイル:</translation>
    </message>
    <message>
        <source>Number of Tiles (X,Y):</source>
        <translation>タイル数 (X,Y):</translation>
    </message>
    <message>
        <source>Tile Size (X,Y):</source>
        <translation>タイルサイズ (X,Y):</translation>
    </message>
    <message>
        <source>Precinct Size X:</source>
        <translation>プレシンクトサイズ X:</translation>
    </message>
    <message>
        <source>Precinct Size Y:</source>
        <translation>プレシンクトサイズ Y:</translation>
    </message>
    <message>
        <source>Code Block Size (Y,X):</source>
        <translation>コードブロックサイズ (Y,X):</translation>
    </message>
    <message>
        <source>Bitdepth:</source>
        <translation>ビット深度:</translation>
    </message>
    <message>
        <source>Resolution Levels:</source>
        <translation>解像度レベル数:</translation>
    </message>
    <message>
        <source>Quality Layers:</source>
        <translation>品質レイヤー数:</translation>
    </message>
    <message>
        <source>Progression Order:</source>
        <translation>プログレッション順序:</translation>
    </message>
    <message>
        <source>Filter:</source>
        <translation>フィルター:</translation>
    </message>
    <message>
        <source>Use Sop:</source>
        <translation>SOP の使用:</translation>
    </message>
    <message>
        <source>Use Eph:</source>
        <translation>EPH の使用:</translation>
    </message>
    <message>
        <source>GML in JP2 Box:</source>
        <translation>GML in JP2 ボックス:</translation>
    </message>
    <message>
        <source>Copy to Clipboard</source>
        <translation>クリップボードにコピー</translation>
    </message>
    <message>
        <source>Comments = %1</source>
        <translation>コメント = %1</translation>
    </message>
    <message>
        <source>Profile = %1</source>
        <translation>プロファイル = %1</translation>
    </message>
    <message>
        <source>Tiles Dimensions (X,Y) = %1 x %2</source>
        <translation>タイル数 (X,Y) = %1 x %2</translation>
    </message>
    <message>
        <source>Tile Width = %1</source>
        <translation>タイルの幅 = %1</translation>
    </message>
    <message>
        <source>Tile Height = %1</source>
        <translation>タイルの高さ = %1</translation>
    </message>
    <message>
        <source>Precinct Sizes on X axis = %1</source>
        <translation>X 軸のプレシンクトサイズ = %1</translation>
    </message>
    <message>
        <source>Precinct Sizes on Y axis = %1</source>
        <translation>Y 軸のプレシンクトサイズ = %1</translation>
    </message>
    <message>
        <source>Code Block Dimensions (X,Y) = %1 x %2</source>
        <translation>コードブロックの寸法 (X,Y) = %1 x %2</translation>
    </message>
    <message>
        <source>Band Bit Depths = %1</source>
        <translation>バンドのビット深度 = %1</translation>
    </message>
    <message>
        <source>Resolution Levels = %1</source>
        <translation>解像度レベル数 = %1</translation>
    </message>
    <message>
        <source>Quality Layers = %1</source>
        <translation>品質レイヤー数 = %1</translation>
    </message>
    <message>
        <source>Progression Order = %1</source>
        <translation>プログレッション順序 = %1</translation>
    </message>
    <message>
        <source>Filter = %1</source>
        <translation>フィルター = %1</translation>
    </message>
    <message>
        <source>SOP Markers = %1</source>
        <translation>SOP マーカー = %1</translation>
    </message>
    <message>
        <source>EPH Markers = %1</source>
        <translation>EPH マーカー = %1</translation>
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
        <translation>XML ボックスが見つかりましたが、内容を解析できませんでした。</translation>
    </message>
    <message>
        <source>&apos;%1&apos; Box #%2:</source>
        <translation>「%1」ボックス #%2:</translation>
    </message>
</context>
<context>
    <name>XRVJP2kLayerPlugin</name>
    <message>
        <source>Begin XRV JPEG 2000 Plugin initialization log</source>
        <translation>XRV JPEG 2000 プラグイン初期化ログの開始</translation>
    </message>
    <message>
        <source>      XRV Library Version : %1</source>
        <translation>      XRV ライブラリのバージョン: %1</translation>
    </message>
    <message>
        <source>      XRVP local disk cache enabled : %1</source>
        <translation>      XRVP ローカルディスクキャッシュの使用: %1</translation>
    </message>
    <message>
        <source>      XRVP local disk cache dir: %1</source>
        <translation>      XRVP ローカルディスクキャッシュのフォルダー: %1</translation>
    </message>
    <message>
        <source>      XRVP local disk cache max size (Mb): %1</source>
        <translation>      XRVP ローカルディスクキャッシュの最大サイズ (MB): %1</translation>
    </message>
    <message>
        <source>      XRV apply texture dither: %1</source>
        <translation>      XRV テクスチャディザの適用: %1</translation>
    </message>
    <message>
        <source>      Cache max mem (Mb): %1</source>
        <translation>      キャッシュの最大メモリ (MB): %1</translation>
    </message>
    <message>
        <source>      Use resilient decoding: %1</source>
        <translation>      エラー耐性のあるデコードの使用: %1</translation>
    </message>
    <message>
        <source>      Optimize for nearest neighbour resampling: %1</source>
        <translation>      最近傍法によるリサンプリングへの最適化: %1</translation>
    </message>
    <message>
        <source>      XRVP HTTP User-Agent: %1</source>
        <translation>      XRVP の HTTP User-Agent: %1</translation>
    </message>
    <message>
        <source>      Using WinHttp (instead of WinInet) for XRVP streaming: %1</source>
        <translation>      XRVP ストリーミングでの WinHttp (WinInet の代わり) の使用: %1</translation>
    </message>
    <message>
        <source>      Using %1 (curl abstraction library) instead of winhhtp.dll</source>
        <translation>      winhhtp.dll の代わりに %1 (curl 抽象化ライブラリ) を使用</translation>
    </message>
    <message>
        <source>End XRV JPEG 2000 Plugin initialization log</source>
        <translation>XRV JPEG 2000 プラグイン初期化ログの終了</translation>
    </message>
    <message>
        <source>XRV JP2 Error:</source>
        <translation>XRV JP2 エラー:</translation>
    </message>
    <message>
        <source>XRV JPEG 2000 Properties</source>
        <translation>XRV JPEG 2000 プロパティ</translation>
    </message>
    <message>
        <source>Add XRVP</source>
        <translation>XRVP を追加</translation>
    </message>
    <message>
        <source>TANNIS XRVP Image Stream</source>
        <translation>TANNIS XRVP 画像ストリーム</translation>
    </message>
    <message>
        <source>Open an XRVP stream from an MILTO TANNIS Server</source>
        <translation>MILTO TANNIS サーバーから XRVP ストリームを開く</translation>
    </message>
    <message>
        <source>Map View</source>
        <translation>マップビュー</translation>
    </message>
    <message>
        <source>Could not get map view from subwindow.</source>
        <translation>サブウィンドウからマップビューを取得できませんでした。</translation>
    </message>
    <message>
        <source>Error adding layer to view.</source>
        <translation>ビューへのレイヤーの追加中にエラーが発生しました。</translation>
    </message>
</context>
<context>
    <name>XRVJP2kLayerRPCInfo</name>
    <message>
        <source>RPC Info</source>
        <translation>RPC 情報</translation>
    </message>
    <message>
        <source>Rapid Positioning Capability</source>
        <translation>高速測位機能 (RPC)</translation>
    </message>
    <message>
        <source>Error Bias:</source>
        <translation>系統誤差:</translation>
    </message>
    <message>
        <source>Error Random:</source>
        <translation>偶然誤差:</translation>
    </message>
    <message>
        <source>Line Offset:</source>
        <translation>ラインオフセット:</translation>
    </message>
    <message>
        <source>Line Scale:</source>
        <translation>ラインスケール:</translation>
    </message>
    <message>
        <source>Latitude Offset:</source>
        <translation>緯度オフセット:</translation>
    </message>
    <message>
        <source>Latitude Scale:</source>
        <translation>緯度スケール:</translation>
    </message>
    <message>
        <source>Longitude Offset:</source>
        <translation>経度オフセット:</translation>
    </message>
    <message>
        <source>Longitude Scale:</source>
        <translation>経度スケール:</translation>
    </message>
    <message>
        <source>Height Offset:</source>
        <translation>高さオフセット:</translation>
    </message>
    <message>
        <source>Height Scale:</source>
        <translation>高さスケール:</translation>
    </message>
    <message>
        <source>Sample Offset:</source>
        <translation>サンプルオフセット:</translation>
    </message>
    <message>
        <source>Sample Scale:</source>
        <translation>サンプルスケール:</translation>
    </message>
    <message>
        <source>Coefficients</source>
        <translation>係数</translation>
    </message>
    <message>
        <source>Copy to Clipboard</source>
        <translation>クリップボードにコピー</translation>
    </message>
    <message>
        <source>Line Numerator Coefficients:
</source>
        <translation>ラインの分子係数:
</translation>
    </message>
    <message>
        <source>Line Denominator Coefficients:
</source>
        <translation>ラインの分母係数:
</translation>
    </message>
    <message>
        <source>Sample Numerator Coefficients:
</source>
        <translation>サンプルの分子係数:
</translation>
    </message>
    <message>
        <source>Sample Denominator Coefficients:
</source>
        <translation>サンプルの分母係数:
</translation>
    </message>
    <message>
        <source>Error Bias = %1</source>
        <translation>系統誤差 = %1</translation>
    </message>
    <message>
        <source>Error Random = %1</source>
        <translation>偶然誤差 = %1</translation>
    </message>
    <message>
        <source>Line Offset = %1</source>
        <translation>ラインオフセット = %1</translation>
    </message>
    <message>
        <source>Line Scale = %1</source>
        <translation>ラインスケール = %1</translation>
    </message>
    <message>
        <source>Latitude Offset = %1</source>
        <translation>緯度オフセット = %1</translation>
    </message>
    <message>
        <source>Latitude Scale = %1</source>
        <translation>緯度スケール = %1</translation>
    </message>
    <message>
        <source>Longitude Offset = %1</source>
        <translation>経度オフセット = %1</translation>
    </message>
    <message>
        <source>Longitude Scale = %1</source>
        <translation>経度スケール = %1</translation>
    </message>
    <message>
        <source>Height Offset = %1</source>
        <translation>高さオフセット = %1</translation>
    </message>
    <message>
        <source>Height Scale = %1</source>
        <translation>高さスケール = %1</translation>
    </message>
    <message>
        <source>Sample Offset = %1</source>
        <translation>サンプルオフセット = %1</translation>
    </message>
    <message>
        <source>Sample Scale = %1</source>
        <translation>サンプルスケール = %1</translation>
    </message>
</context>
<context>
    <name>XRVJP2kLayerStatistics</name>
    <message>
        <source>Statistics</source>
        <translation>統計</translation>
    </message>
    <message>
        <source>Select a Band:</source>
        <translation>バンドを選択:</translation>
    </message>
    <message>
        <source>Mode:</source>
        <translation>最頻値:</translation>
    </message>
    <message>
        <source>Median:</source>
        <translation>中央値:</translation>
    </message>
    <message>
        <source>Mean:</source>
        <translation>平均:</translation>
    </message>
    <message>
        <source>Standard Deviation:</source>
        <translation>標準偏差:</translation>
    </message>
    <message>
        <source>Minimum Value:</source>
        <translation>最小値:</translation>
    </message>
    <message>
        <source>Maximum Value:</source>
        <translation>最大値:</translation>
    </message>
    <message>
        <source>Histogram</source>
        <translation>ヒストグラム</translation>
    </message>
    <message>
        <source>Copy to Clipboard</source>
        <translation>クリップボードにコピー</translation>
    </message>
    <message>
        <source>Band #%1</source>
        <translation>バンド #%1</translation>
    </message>
    <message>
        <source>mode = %1</source>
        <translation>最頻値 = %1</translation>
    </message>
    <message>
        <source>median = %1</source>
        <translation>中央値 = %1</translation>
    </message>
    <message>
        <source>mean = %1</source>
        <translation>平均 = %1</translation>
    </message>
    <message>
        <source>stddev = %1</source>
        <translation>標準偏差 = %1</translation>
    </message>
    <message>
        <source>min = %1</source>
        <translation>最小値 = %1</translation>
    </message>
    <message>
        <source>max = %1</source>
        <translation>最大値 = %1</translation>
    </message>
    <message>
        <source>Histogram Band #%1 = </source>
        <translation>ヒストグラム バンド #%1 = </translation>
    </message>
</context>
<context>
    <name>XRVJP2kPreferences</name>
    <message>
        <source>Choose XRVP Cache Directory</source>
        <translation>XRVP キャッシュフォルダーの選択</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>エラー</translation>
    </message>
    <message>
        <source>Directory does not exist!</source>
        <translation>フォルダーが存在しません。</translation>
    </message>
    <message>
        <source>Clearing the XRVP disk cache cannot be undone.

Are you sure you want to clear the disk cache?</source>
        <translation>XRVP ディスクキャッシュの消去は元に戻せません。

ディスクキャッシュを消去してもよろしいですか?</translation>
    </message>
    <message>
        <source>Disk Cache</source>
        <translation>ディスクキャッシュ</translation>
    </message>
    <message>
        <source>Not all files could be removed. Close all map views before clearing the cache.</source>
        <translation>一部のファイルを削除できませんでした。すべてのマップビューを閉じてからキャッシュを消去してください。</translation>
    </message>
    <message>
        <source>Could not open local XRVP cache folder &apos;%1&apos;.</source>
        <translation>ローカルの XRVP キャッシュフォルダー「%1」を開けませんでした。</translation>
    </message>
</context>
<context>
    <name>XRVJP2kPreferencesClass</name>
    <message>
        <source>XRV &amp; JP2 Preferences</source>
        <translation>XRV &amp; JP2 設定</translation>
    </message>
    <message>
        <source>Memory Cache</source>
        <translation>メモリキャッシュ</translation>
    </message>
    <message>
        <source>More memory will increase performance, less will require more disk or network IO. The recommended amount for your machine is &lt;b&gt;${MEMORY}&lt;/b&gt;</source>
        <translation>メモリを増やすとパフォーマンスが向上し、減らすとディスクやネットワークへのアクセスが増えます。このコンピューターでの推奨値は &lt;b&gt;${MEMORY}&lt;/b&gt; です</translation>
    </message>
    <message>
        <source>0.00 MB</source>
        <translation>0.00 MB</translation>
    </message>
    <message>
        <source>Less memory</source>
        <translation>メモリ少</translation>
    </message>
    <message>
        <source>Better performance</source>
        <translation>高パフォーマンス</translation>
    </message>
    <message>
        <source>XRVP Disk Cache</source>
        <translation>XRVP ディスクキャッシュ</translation>
    </message>
    <message>
        <source>Location:</source>
        <translation>場所:</translation>
    </message>
    <message>
        <source>Max Cache Size:</source>
        <translation>最大サイズ:</translation>
    </message>
    <message>
        <source>500 MB</source>
        <translation>500 MB</translation>
    </message>
    <message>
        <source>Cache Used:</source>
        <translation>使用量:</translation>
    </message>
    <message>
        <source>0 MB</source>
        <translation>0 MB</translation>
    </message>
    <message>
        <source>Clear Disk Cache</source>
        <translation>ディスクキャッシュを消去</translation>
    </message>
    <message>
        <source>View Files...</source>
        <translation>ファイルを表示...</translation>
    </message>
    <message>
        <source>Default settings for new layers</source>
        <translation>新しいレイヤーの既定の設定</translation>
    </message>
    <message>
        <source>%</source>
        <translation>%</translation>
    </message>
    <message>
        <source>Dynamic range adjustment for non 8 bit data</source>
        <translation>8 ビット以外のデータのダイナミックレンジ調整</translation>
    </message>
    <message>
        <source>Open images in progressive mode</source>
        <translation>画像をプログレッシブモードで開く</translation>
    </message>
    <message>
        <source>Use bilinear resampling method</source>
        <translation>バイリニア法でリサンプリングする</translation>
    </message>
    <message>
        <source>Use adaptive pan/zoom</source>
        <translation>アダプティブなパン/ズームを使用</translation>
    </message>
    <message>
        <source>Enable texturing when decompressing XRV images</source>
        <translation>XRV 画像の展開時にテクスチャ処理を行う</translation>
    </message>
    <message>
        <source>Use resilient  decoding (attempt to decode invalid files)</source>
        <translation>エラー耐性のあるデコードを使用 (不正なファイルのデコードを試みる)</translation>
    </message>
    <message>
        <source>Use WinHTTP in the XRVP Client</source>
        <translation>XRVP クライアントで WinHTTP を使用</translation>
    </message>
    <message>
        <source>Log SDK messages to application console</source>
        <translation>SDK のメッセージをアプリケーションのコンソールに記録</translation>
    </message>
    <message>
        <source>XRVP HTTP User-Agent:</source>
        <translation>XRVP の HTTP User-Agent:</translation>
    </message>
    <message>
        <source>&lt;i&gt;Note: you must restart to apply these settings.&lt;/i&gt;</source>
        <translation>&lt;i&gt;注意: これらの設定を適用するには再起動が必要です。&lt;/i&gt;</translation>
    </message>
    <message>
        <source>Defaults</source>
        <translation>既定値</translation>
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
        <translation>透明度</translation>
    </message>
    <message>
        <source>Reset to 0% transparency</source>
        <translation>透明度を 0% に戻す</translation>
    </message>
    <message>
        <source>%</source>
        <translation>%</translation>
    </message>
    <message>
        <source>Contrast</source>
        <translation>コントラスト</translation>
    </message>
    <message>
        <source>Reset to 100% contrast</source>
        <translation>コントラストを 100% に戻す</translation>
    </message>
    <message>
        <source>Brightness</source>
        <translation>明るさ</translation>
    </message>
    <message>
        <source>Reset to 100% brightness</source>
        <translation>明るさを 100% に戻す</translation>
    </message>
    <message>
        <source>Dynamic Range Adjustment</source>
        <translation>ダイナミックレンジ調整</translation>
    </message>
    <message>
        <source>Reset to default dynamic range</source>
        <translation>ダイナミックレンジを既定値に戻す</translation>
    </message>
    <message>
        <source>JPEG 2000 Quality Layers</source>
        <translation>JPEG 2000 品質レイヤー</translation>
    </message>
    <message>
        <source>Reset to max quality layers</source>
        <translation>品質レイヤー数を最大に戻す</translation>
    </message>
    <message>
        <source>Bands</source>
        <translation>バンド</translation>
    </message>
    <message>
        <source>Red:</source>
        <translation>赤:</translation>
    </message>
    <message>
        <source>Green:</source>
        <translation>緑:</translation>
    </message>
    <message>
        <source>Blue:</source>
        <translation>青:</translation>
    </message>
    <message>
        <source>Opacity:</source>
        <translation>不透明度:</translation>
    </message>
    <message>
        <source>Display</source>
        <translation>表示</translation>
    </message>
    <message>
        <source>Use progressive rendering</source>
        <translation>プログレッシブ描画を使用</translation>
    </message>
    <message>
        <source>Use adaptive pan/zoom</source>
        <translation>アダプティブなパン/ズームを使用</translation>
    </message>
    <message>
        <source>Use backing store</source>
        <translation>バッキングストアを使用</translation>
    </message>
    <message>
        <source>Enable texture/dither (XRV only)</source>
        <translation>テクスチャ/ディザを有効化 (XRV のみ)</translation>
    </message>
    <message>
        <source>Draw outline</source>
        <translation>輪郭線を描画</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>色</translation>
    </message>
    <message>
        <source>Resample Method:</source>
        <translation>補間方法:</translation>
    </message>
    <message>
        <source>Nearest Neighbour</source>
        <translation>最近傍法</translation>
    </message>
    <message>
        <source>Bilinear</source>
        <translation>バイリニア法</translation>
    </message>
    <message>
        <source>Advanced</source>
        <translation>詳細</translation>
    </message>
    <message>
        <source>Flush memory cache when closing images</source>
        <translation>閉じるときにメモリキャッシュを消去</translation>
    </message>
    <message>
        <source>Read Line Method</source>
        <translation>ラインの読み取り方法</translation>
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
        <translation>陰影起伏</translation>
    </message>
    <message>
        <source>Enable hillshade for layer</source>
        <translation>レイヤーの陰影起伏を有効にする</translation>
    </message>
    <message>
        <source>Azumith:</source>
        <translation>方位角:</translation>
    </message>
    <message>
        <source>Elevation:</source>
        <translation>高度角:</translation>
    </message>
</context>
</TS>
