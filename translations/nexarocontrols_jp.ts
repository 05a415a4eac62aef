<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja">
<context>
    <name>Caption</name>
    <message>
        <source>Finish editing:</source>
        <translation>編集の終了:</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>キャンセル</translation>
    </message>
    <message>
        <source>Live mode</source>
        <translation>ライブ表示</translation>
    </message>
    <message>
        <source>Snap an image</source>
        <translation>画像取り込み</translation>
    </message>
    <message>
        <source>Pointer</source>
        <translation>ポインタ</translation>
    </message>
    <message>
        <source>Pan</source>
        <translation>画像の移動</translation>
    </message>
    <message>
        <source>Zoom in (right button: zoom out)</source>
        <translation>拡大 (右ボタン: 縮小)</translation>
    </message>
    <message>
        <source>Zoom out (right button: zoom in)</source>
        <translation>縮小 (右ボタン: 拡大)</translation>
    </message>
    <message>
        <source>Fit the image</source>
        <translation>全体表示</translation>
    </message>
    <message>
        <source>Default zoom</source>
        <translation>標準倍率</translation>
    </message>
    <message>
        <source>Change size</source>
        <translation>サイズ変更</translation>
    </message>
    <message>
        <source>Crosshair</source>
        <translation>十字線</translation>
    </message>
    <message>
        <source>Reset the window</source>
        <translation>ウィンドウのリセット</translation>
    </message>
    <message>
        <source>Open an image</source>
        <translation>画像を開く</translation>
    </message>
    <message>
        <source>Save the image</source>
        <translation>画像を保存</translation>
    </message>
    <message>
        <source>Laser on/off</source>
        <translation>レーザー オン/オフ</translation>
    </message>
    <message>
        <source>This computer</source>
        <translation>このコンピュータ</translation>
    </message>
    <message>
        <source>Robot controller</source>
        <translation>ロボットコントローラ</translation>
    </message>
    <message>
        <source>Image log</source>
        <translation>画像ログ</translation>
    </message>
    <message>
        <source>Controller</source>
        <translation>コントローラ</translation>
    </message>
    <message>
        <source>User</source>
        <translation>ユーザ</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>パスワード</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>接続</translation>
    </message>
    <message>
        <source>File name:</source>
        <translation>ファイル名:</translation>
    </message>
    <message>
        <source>File type:</source>
        <translation>ファイルの種類:</translation>
    </message>
    <message>
        <source>Save:</source>
        <translation>保存:</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名前</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>サイズ</translation>
    </message>
    <message>
        <source>Date modified</source>
        <translation>更新日時</translation>
    </message>
    <message>
        <source>Save image</source>
        <translation>画像の保存</translation>
    </message>
    <message>
        <source>Open image</source>
        <translation>画像を開く</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>開く</translation>
    </message>
    <message>
        <source>Image as shown (colour)</source>
        <translation>表示中の画像 (カラー)</translation>
    </message>
    <message>
        <source>Grey-scale image</source>
        <translation>グレースケール画像</translation>
    </message>
    <message>
        <source>Asking the page for the image log...</source>
        <translation>画像ログを要求しています...</translation>
    </message>
    <message>
        <source>Enter the controller and press Connect.</source>
        <translation>コントローラを入力して接続を押してください。</translation>
    </message>
    <message>
        <source>No controller given</source>
        <translation>コントローラが指定されていません</translation>
    </message>
    <message>
        <source>Connecting to </source>
        <translation>接続中: </translation>
    </message>
    <message>
        <source>Connected to </source>
        <translation>接続済み: </translation>
    </message>
    <message>
        <source>Not connected</source>
        <translation>接続されていません</translation>
    </message>
    <message>
        <source>Listing </source>
        <translation>一覧を取得中: </translation>
    </message>
    <message>
        <source>files</source>
        <translation>ファイル</translation>
    </message>
    <message>
        <source>folders</source>
        <translation>フォルダ</translation>
    </message>
    <message>
        <source>No preview</source>
        <translation>プレビューなし</translation>
    </message>
    <message>
        <source>No such folder: </source>
        <translation>フォルダがありません: </translation>
    </message>
    <message>
        <source>logged images</source>
        <translation>件のログ画像</translation>
    </message>
    <message>
        <source>Pick a time stamp in the log.</source>
        <translation>ログのタイムスタンプを選んでください。</translation>
    </message>
    <message>
        <source>Pick a file.</source>
        <translation>ファイルを選んでください。</translation>
    </message>
    <message>
        <source>Not a controller file path: </source>
        <translation>コントローラのファイルパスではありません: </translation>
    </message>
    <message>
        <source> is a memory device of the controller: images cannot be saved there.</source>
        <translation> はコントローラのメモリデバイスです。画像は保存できません。</translation>
    </message>
    <message>
        <source>No such file: </source>
        <translation>ファイルがありません: </translation>
    </message>
    <message>
        <source>Freehand pen (right button erases)</source>
        <translation>フリーハンド (右ボタン: 消去)</translation>
    </message>
    <message>
        <source>Joined lines (double click ends the line)</source>
        <translation>連続線 (ダブルクリックで終了)</translation>
    </message>
    <message>
        <source>Ellipse from its centre</source>
        <translation>楕円 (中心から)</translation>
    </message>
    <message>
        <source>Rectangle</source>
        <translation>矩形</translation>
    </message>
    <message>
        <source>Fill an area</source>
        <translation>塗りつぶし</translation>
    </message>
    <message>
        <source>Small pen (Shift: double width)</source>
        <translation>細いペン (Shift: 2倍)</translation>
    </message>
    <message>
        <source>Medium pen (Shift: double width)</source>
        <translation>中くらいのペン (Shift: 2倍)</translation>
    </message>
    <message>
        <source>Large pen (Shift: double width)</source>
        <translation>太いペン (Shift: 2倍)</translation>
    </message>
    <message>
        <source>All</source>
        <translation>全て</translation>
    </message>
    <message>
        <source>None</source>
        <translation>なし</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>元に戻す</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>ヘルプ</translation>
    </message>
    <message>
        <source>Mask the whole image</source>
        <translation>画像全体をマスク</translation>
    </message>
    <message>
        <source>Clear the whole mask</source>
        <translation>マスクを全て消去</translation>
    </message>
    <message>
        <source>Undo the last drawing</source>
        <translation>最後の描画を元に戻す</translation>
    </message>
    <message>
        <source>Help on mask editing</source>
        <translation>マスク編集のヘルプ</translation>
    </message>
    <message>
        <source>User Frame</source>
        <translation>ユーザフレーム</translation>
    </message>
    <message>
        <source>Rotation center</source>
        <translation>回転中心</translation>
    </message>
    <message>
        <source>Center</source>
        <translation>中心</translation>
    </message>
    <message>
        <source>Reference position</source>
        <translation>基準位置</translation>
    </message>
    <message>
        <source>Offset reference position</source>
        <translation>オフセット基準位置</translation>
    </message>
    <message>
        <source>camera %1</source>
        <translation>カメラ %1</translation>
    </message>
    <message>
        <source>Calibration point %1 of %2
%3 mm</source>
        <translation>%2 のキャリブレーション点 %1
%3 mm</translation>
    </message>
    <message>
        <source>Camera %1
%2 mm</source>
        <translation>カメラ %1
%2 mm</translation>
    </message>
    <message>
        <source>Found point P%1 (%2)</source>
        <translation>検出点 P%1 (%2)</translation>
    </message>
    <message>
        <source>Nominal of P%1 (%2)</source>
        <translation>P%1 の公称位置 (%2)</translation>
    </message>
    <message>
        <source>
found %1 mm
nominal %2 mm</source>
        <translation>
検出 %1 mm
公称 %2 mm</translation>
    </message>
    <message>
        <source>
offset dX %1  dY %2  dZ %3 (%4) mm</source>
        <translation>
ずれ dX %1  dY %2  dZ %3 (%4) mm</translation>
    </message>
</context>
</TS>
