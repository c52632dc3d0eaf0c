// node cfb.js list FILE: the elements of a compound file as JSON: path, kind, size and a sum of the bytes.
// node cfb.js make FOLDER: compound files of that package's own making.
// node cfb.js settings FILE: FILE.cfb with the bytes of FILE as the add-in's settings.
'use strict';
const fs = require('fs');
const path = require('path');
const CFB = require('cfb');

// FNV-1a, 32 bits.
function sum(bytes) {
    let hash = 0x811c9dc5;
    for (const byte of bytes) hash = Math.imul(hash ^ byte, 0x01000193) >>> 0;
    return hash;
}

function list(file) {
    const parsed = CFB.read(file, {type: 'file'});
    const elements = [];
    parsed.FileIndex.forEach((entry, i) => {
        if (entry.type !== 1 && entry.type !== 2) return;
        const content = entry.type === 2 && entry.content ? Buffer.from(entry.content).subarray(0, entry.size) : [];
        elements.push({
            path: parsed.FullPaths[i].split('/').slice(1).filter((name) => name !== ''),
            stream: entry.type === 2,
            size: content.length,
            sum: sum(content),
        });
    });
    console.log(JSON.stringify(elements));
}

function make(folder) {
    const some = CFB.utils.cfb_new();
    CFB.utils.cfb_add(some, '/ThirdPtyStore/Raylume/ShaderData', Buffer.from('0123456789'));
    CFB.utils.cfb_add(some, '/ThirdPtyStore/Raylume/4095', Buffer.alloc(4095, 1));
    CFB.utils.cfb_add(some, '/ThirdPtyStore/Raylume/4096', Buffer.alloc(4096, 2));
    CFB.utils.cfb_add(some, '/Large', Buffer.alloc(9000000, 'large'));
    CFB.utils.cfb_add(some, '/\u00c4\u6f22', Buffer.from('name'));
    CFB.writeFile(some, path.join(folder, 'some.cfb'));
    const many = CFB.utils.cfb_new();
    for (let i = 0; i < 400; ++i) CFB.utils.cfb_add(many, '/s' + i, Buffer.from('bytes of ' + i));
    CFB.writeFile(many, path.join(folder, 'many.cfb'));
}

// The bytes of a file as settings, in a document beside it.
function settings(file) {
    const document = CFB.utils.cfb_new();
    CFB.utils.cfb_add(document, '/Contents', Buffer.alloc(9000, 'large'));
    CFB.utils.cfb_add(document, '/ThirdPtyStore/Raylume/ShaderData', fs.readFileSync(file));
    CFB.writeFile(document, file + '.cfb');
}

({list, make, settings})[process.argv[2]](process.argv[3]);
