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
</context>
</TS>
