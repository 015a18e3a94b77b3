import { defineWords } from '../words/language.js';

export const pastedWords = defineWords({
  file: ['Read a file', '读取文件', '讀取檔案'],
  empty: ['Empty', '清空', '清空'],
  noTable: [
    'This file is a workbook. Save it as CSV, or copy its cells and paste them here.',
    '此文件为工作簿。请另存为 CSV，或复制单元格后粘贴到此处。',
    '此檔案為活頁簿。請另存為 CSV，或複製儲存格後貼到此處。',
  ],
});
